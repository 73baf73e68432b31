#include <gtest/gtest.h>

#include "engine/FfbEngine.h"
#include "profiles/CarCatalogue.h"

namespace veltor {
namespace {

void ExpectRow(const CarRow& row, float yaw, float steerGain, float lateral, float resistance, float bias) {
    EXPECT_EQ(row.YawRateMultiplier, yaw);
    EXPECT_EQ(row.YawSteerGain, steerGain);
    EXPECT_EQ(row.LateralAccelDivisor, lateral);
    EXPECT_EQ(row.ResistanceGain, resistance);
    EXPECT_EQ(row.SteerMarginBias, bias);
}

TEST(FfbEngine_Constructor, HoldsTheDefaultsOfEverySettingAndAFreshStatus) {
    FfbEngine engine;
    const EngineSettings s = engine.CopySettings();
    EXPECT_EQ(s.Mode, 0);
    EXPECT_TRUE(s.UseCarSpecificSettings);
    EXPECT_TRUE(s.ReduceForceWhenParked);
    EXPECT_FALSE(s.SimucubeMode);
    EXPECT_EQ(s.ForceStrength, 50);
    EXPECT_EQ(s.Bumps, 20);
    EXPECT_EQ(s.BumpImpacts, 20);
    EXPECT_EQ(s.AbsVibration, 15);
    EXPECT_EQ(s.SuspensionDetailPriority, 50);
    EXPECT_EQ(s.CarForceBalance, 100);
    EXPECT_EQ(s.UndersteerResistance, 75);
    EXPECT_EQ(s.OversteerCorrection, 50);
    EXPECT_EQ(s.CrashLongG, 60);
    EXPECT_EQ(s.CrashLatG, 60);
    EXPECT_EQ(s.CrashDurationTenths, 15);
    EXPECT_EQ(s.CrashReduction, 95);
    const EngineStatus status = engine.CopyStatus();
    EXPECT_FALSE(status.connected);
    EXPECT_TRUE(status.driverNameKnown);
    EXPECT_EQ(status.carPath, L"generic");
    EXPECT_EQ(status.driverName, L"unknown");
    EXPECT_FALSE(engine.running.load());
    EXPECT_EQ(engine.crashHoldUntil, 0);
}

TEST(FfbEngine_ResolveCarRow, RanksOverrideThenCatalogueThenUnmatchedSet) {
    FfbEngine engine;
    ExpectRow(engine.ResolveCarRow(L"mx5 mx52016", true), 36.0f, 0.0f, 96.0f, 0.90f, 0.0f);
    ExpectRow(engine.ResolveCarRow(L"MX5 MX52016", true), 36.0f, 0.0f, 96.0f, 0.90f, 0.0f);
    // A path that merely begins with a catalogue path is an unknown car.
    ExpectRow(engine.ResolveCarRow(L"mx5 mx52016 extra", true), 40.0f, 0.0f, 90.0f, 1.0f, 0.0f);
    ExpectRow(engine.ResolveCarRow(L"generic", true), 40.0f, 0.0f, 90.0f, 1.0f, 0.0f);

    engine.PublishOverrides({CarCoefficients{L"mx5 MX52016", 50.0f, 0.1f, 80.0f, 1.5f, 0.02f}});
    ExpectRow(engine.ResolveCarRow(L"Mx5 mx52016", true), 50.0f, 0.1f, 80.0f, 1.5f, 0.02f);
    ExpectRow(engine.ResolveCarRow(L"rt2000", true), 25.0f, 0.0f, 86.0f, 1.10f, 0.0f);
}

TEST(FfbEngine_ResolveCarRow, IgnoresCarAndOverridesWhenCarSpecificSettingsAreOff) {
    FfbEngine engine;
    engine.PublishOverrides({CarCoefficients{L"rt2000", 50.0f, 0.1f, 80.0f, 1.5f, 0.02f}});
    for (const wchar_t* car : {L"rt2000", L"mx5 mx52016", L"no such car"}) {
        ExpectRow(engine.ResolveCarRow(car, false), 44.0f, 0.0f, 110.0f, 1.0f, 0.0f);
    }
}

TEST(FfbEngine_UpdateStatus, CountsTrackChangesOnlyWhileConnectedAndFillsEmptyNames) {
    FfbEngine engine;
    engine.UpdateStatus(false, true, L"", L"", 0, true);
    EXPECT_EQ(engine.CopyStatus().onTrackChangeCount, 0u);
    engine.UpdateStatus(true, false, L"rt2000", L"Ann", 7, false);
    EXPECT_EQ(engine.CopyStatus().onTrackChangeCount, 1u);
    engine.UpdateStatus(true, false, L"rt2000", L"Ann", 7, false);
    EXPECT_EQ(engine.CopyStatus().onTrackChangeCount, 1u);
    engine.UpdateStatus(true, true, L"", L"", 0, true);
    const EngineStatus status = engine.CopyStatus();
    EXPECT_EQ(status.onTrackChangeCount, 2u);
    EXPECT_EQ(status.carPath, L"generic");
    EXPECT_EQ(status.driverName, L"unknown");
}

TEST(FfbEngine_UpdateStatus, DisconnectingClearsTheClippedPercent) {
    FfbEngine engine;
    engine.clipSamples = 4;
    engine.clipOver = 1;
    engine.ReportClipping();
    EXPECT_FLOAT_EQ(engine.CopyStatus().clippedPercent, 25.0f);
    engine.UpdateStatus(true, true, L"a", L"b", 1, true);
    EXPECT_FLOAT_EQ(engine.CopyStatus().clippedPercent, 25.0f);
    engine.UpdateStatus(false, false, L"a", L"b", 1, true);
    EXPECT_FLOAT_EQ(engine.CopyStatus().clippedPercent, 0.0f);
}

// A stint through ticks is reported in the emit-force tests; an empty one still counts.
TEST(FfbEngine_Reports, AnEmptyStintStillReports) {
    FfbEngine engine;
    engine.ReportClipping();
    engine.ReportOutput();
    const EngineStatus status = engine.CopyStatus();
    EXPECT_EQ(status.clipReportCount, 1u);
    EXPECT_EQ(status.clippedPercent, 0.0f);
    EXPECT_EQ(status.outputReportCount, 1u);
    EXPECT_EQ(status.outputReportSamples, 0u);
}

TEST(FfbEngine_Stop, ReturnsAtOnceWhenNothingRuns) {
    FfbEngine engine;
    engine.Stop();
    engine.Stop();
    EXPECT_FALSE(engine.running.load());
    EXPECT_TRUE(engine.stopRequested.load());
}

}  // namespace
}  // namespace veltor
