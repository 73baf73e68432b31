#include <gtest/gtest.h>

#include <cstring>

#include "TickHarness.h"
#include "engine/FfbEngine.h"
#include "profiles/CarCatalogue.h"

namespace veltor {
namespace {

// An override wins over the catalogue whatever the case of its letters; a car in neither has the set for
// an unknown car; with car-specific settings off the car and the overrides do not count.
TEST(FfbEngine_ResolveCarRow, OverrideThenCatalogueThenTheSetForAnUnknownCar) {
    FfbEngine engine;
    const CarCoefficients mx5{L"mx5 MX52016", 50.0f, 0.1f, 80.0f, 1.5f, 0.02f};
    engine.PublishOverrides({mx5});
    const struct {
        const wchar_t* car;
        bool carSpecific;
        CarRow row;
    } cases[] = {{L"Mx5 mx52016", true, mx5.Row()},
                 {L"RT2000", true, FindCatalogueRow(L"rt2000")->Coefficients},
                 {L"rt2000 extra", true, kUnmatchedCarRow},
                 {L"mx5 mx52016", false, kCarIndependentRow},
                 {L"rt2000", false, kCarIndependentRow}};
    for (const auto& c : cases) {
        const CarRow row = engine.ResolveCarRow(c.car, c.carSpecific);
        EXPECT_EQ(std::memcmp(&row, &c.row, sizeof row), 0) << c.car;
    }
}

// The tick resolves the row once per change, yet a published change of the overrides acts on the very next
// tick. Here the row's resistance gain is the one thing that moves the force: 9.75 Nm of resistance per unit.
TEST(FfbEngine_ResolveCarRow, APublishedOverrideActsOnTheNextTick) {
    auto harness = std::make_unique<test::TickHarness>();
    harness->loop.carPath = L"testcar";
    TelemetryFrame frame = test::SteadyFrame(0.0f, 20.0f);
    frame.steeringWheelAngle = 0.5f;
    const auto lastStore = [&](bool carSpecific) {
        harness->engine.settings.UseCarSpecificSettings = carSpecific;
        harness->Run(frame);
        return test::SteppedPlatform::stores.back().value;
    };
    EXPECT_EQ(lastStore(true), -2437);
    harness->engine.PublishOverrides({CarCoefficients{L"TESTCAR", 40.0f, 0.0f, 90.0f, 2.0f, 0.0f}});
    EXPECT_EQ(lastStore(true), -4875);
    EXPECT_EQ(lastStore(false), -2437);
    EXPECT_EQ(lastStore(true), -4875);
    harness->engine.PublishOverrides({});
    EXPECT_EQ(lastStore(true), -2437);
}

}  // namespace
}  // namespace veltor
