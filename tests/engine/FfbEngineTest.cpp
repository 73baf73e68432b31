#include <gtest/gtest.h>

#include "TickHarness.h"
#include "engine/FfbEngine.h"

namespace veltor {
namespace {

std::vector<float> Values(const CarRow& row) {
    return {row.YawRateMultiplier, row.YawSteerGain, row.LateralAccelDivisor, row.ResistanceGain, row.SteerMarginBias};
}

// An override wins over the catalogue whatever the case of its letters; only a whole path matches; with
// car-specific settings off the car and the overrides do not count.
TEST(FfbEngine_ResolveCarRow, OverrideThenCatalogueThenTheSetForAnUnknownCar) {
    FfbEngine engine;
    engine.PublishOverrides({CarCoefficients{L"mx5 MX52016", 50.0f, 0.1f, 80.0f, 1.5f, 0.02f}});
    const struct {
        const wchar_t* car;
        bool carSpecific;
        std::vector<float> row;
    } cases[] = {
        {L"Mx5 mx52016", true, {50.0f, 0.1f, 80.0f, 1.5f, 0.02f}},
        {L"RT2000", true, {25.0f, 0.0f, 86.0f, 1.10f, 0.0f}},
        {L"rt2000 extra", true, {40.0f, 0.0f, 90.0f, 1.0f, 0.0f}},
        {L"generic", true, {40.0f, 0.0f, 90.0f, 1.0f, 0.0f}},
        {L"mx5 mx52016", false, {44.0f, 0.0f, 110.0f, 1.0f, 0.0f}},
        {L"rt2000", false, {44.0f, 0.0f, 110.0f, 1.0f, 0.0f}},
    };
    for (const auto& c : cases) EXPECT_EQ(Values(engine.ResolveCarRow(c.car, c.carSpecific)), c.row) << c.car;
}

// The tick resolves the row once per change, yet a published change of the overrides acts on the very next
// tick. Here the row's resistance gain is the one thing that moves the force: 9.75 Nm of resistance per unit.
TEST(FfbEngine_ResolveCarRow, APublishedOverrideActsOnTheNextTick) {
    auto harness = std::make_unique<test::TickHarness>();
    harness->loop.carPath = L"testcar";
    test::TickPlatform::now = 1;
    TelemetryFrame frame = test::SteadyFrame(0.0f, 20.0f);
    frame.steeringWheelAngle = 0.5f;
    const auto lastStore = [&](bool carSpecific) {
        harness->engine.settings.UseCarSpecificSettings = carSpecific;
        harness->Run(frame);
        return test::TickPlatform::storedValue[5];
    };
    EXPECT_EQ(lastStore(true), -2437);
    harness->engine.PublishOverrides({CarCoefficients{L"TESTCAR", 40.0f, 0.0f, 90.0f, 2.0f, 0.0f}});
    EXPECT_EQ(lastStore(true), -4875);
    EXPECT_EQ(lastStore(false), -2437);
    EXPECT_EQ(lastStore(true), -4875);
    harness->engine.PublishOverrides({});
    EXPECT_EQ(lastStore(true), -2437);
}

TEST(FfbEngine_UpdateStatus, CountsTrackChangesWhileConnectedFillsEmptyNamesAndCutsLongOnes) {
    FfbEngine engine;
    engine.UpdateStatus(false, true, L"", L"", 0, true);
    engine.clipSamples = 4;
    engine.clipOver = 1;
    engine.ReportClipping();
    engine.UpdateStatus(true, false, L"rt2000", L"Ann", 7, false);
    engine.UpdateStatus(true, false, L"rt2000", L"Ann", 7, false);
    EXPECT_EQ(engine.CopyStatus().onTrackChangeCount, 1u);
    EXPECT_FLOAT_EQ(engine.CopyStatus().clippedPercent, 25.0f);
    engine.UpdateStatus(true, true, L"", std::wstring(300, L'n'), 0, true);
    EngineStatus status = engine.CopyStatus();
    EXPECT_EQ(status.onTrackChangeCount, 2u);
    EXPECT_EQ(status.carPath, L"generic");
    EXPECT_EQ(status.driverName, std::wstring(kStatusTextCapacity, L'n'));
    engine.UpdateStatus(false, false, L"a", L"", 1, true);
    status = engine.CopyStatus();
    EXPECT_EQ(status.driverName, L"unknown");
    EXPECT_EQ(status.clippedPercent, 0.0f);
    EXPECT_EQ(status.onTrackChangeCount, 2u);
}

TEST(FfbEngine_Stop, ReturnsAtOnceWhenNothingRuns) {
    FfbEngine engine;
    engine.Stop();
    engine.Stop();
    EXPECT_FALSE(engine.running.load());
}

}  // namespace
}  // namespace veltor
