#include <gtest/gtest.h>

#include <cmath>

#include "TickHarness.h"
#include "engine/BaseSignal.h"

namespace veltor::test {
namespace {

// The smallest torque whose scaled value at the default strength is `units` output units.
float TorqueForUnits(int32_t units) {
    float torque = static_cast<float>(units) / 250.0f;
    const EngineSettings defaults;
    while (ToOutputUnits(torque, defaults) < units) torque = std::nextafter(torque, 1000.0f);
    while (ToOutputUnits(std::nextafter(torque, 0.0f), defaults) >= units) torque = std::nextafter(torque, 0.0f);
    return torque;
}

class EmitForceTest : public ::testing::Test {
protected:
    void SetUp() override { harness = std::make_unique<TickHarness>(); }
    EngineSettings& Settings() { return harness->engine.settings; }
    std::unique_ptr<TickHarness> harness;
};

// 9996 is handed over as it is; above it the value is clipped and counted.
TEST_F(EmitForceTest, HandsOver9996UnclippedAndClipsAboveIt) {
    harness->Run(SteadyFrame(TorqueForUnits(9996)));
    ASSERT_EQ(TickPlatform::storeCount, 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(TickPlatform::storedIndex[i], i);
        EXPECT_EQ(TickPlatform::storedValue[i], 9996);
    }
    EXPECT_EQ(harness->engine.clipOver, 0);
    EXPECT_EQ(harness->wheel.commandedForce.load(), 9996);
    harness->Run(SteadyFrame(TorqueForUnits(9997)));
    EXPECT_EQ(TickPlatform::storedValue[5], 9996);
    harness->Run(SteadyFrame(-TorqueForUnits(20000)));
    EXPECT_EQ(TickPlatform::storedValue[0], -9996);
    EXPECT_EQ(harness->engine.clipSamples, 18);
    EXPECT_EQ(harness->engine.clipOver, 12);
    EXPECT_EQ(harness->engine.outPeak, 9996);
}

TEST_F(EmitForceTest, ParkedCarCountsAsClippedThoughTheWheelGetsAQuarter) {
    harness->Run(SteadyFrame(TorqueForUnits(12000), 1.0f));
    EXPECT_EQ(TickPlatform::storedValue[0], 2499);
    EXPECT_EQ(harness->engine.clipOver, 6);
    EXPECT_EQ(harness->engine.outPeak, 2499);
    EXPECT_EQ(harness->engine.outNonZero, 6);
}

TEST_F(EmitForceTest, StrengthZeroReportsSamplesNoneOfThemNonZero) {
    Settings().ForceStrength = 0;
    harness->Run(SteadyFrame(10.0f));
    harness->Run(SteadyFrame(10.0f));
    harness->Run(TelemetryFrame{});  // off track
    const EngineStatus status = harness->engine.CopyStatus();
    EXPECT_EQ(status.outputReportCount, 1u);
    EXPECT_EQ(status.outputReportSamples, 12u);
    EXPECT_EQ(status.outputReportNonZero, 0u);
    EXPECT_EQ(status.outputReportPeak, 0);
    EXPECT_EQ(status.clipReportCount, 1u);
    EXPECT_EQ(status.clippedPercent, 0.0f);
}

TEST_F(EmitForceTest, StintReportGivesTheClippedShareAndClearsTheCounters) {
    harness->Run(SteadyFrame(TorqueForUnits(12000)));
    harness->Run(SteadyFrame(1.0f));
    harness->Run(SteadyFrame(1.0f));
    harness->Run(SteadyFrame(1.0f));
    TelemetryFrame off;
    harness->Run(off);
    const EngineStatus status = harness->engine.CopyStatus();
    EXPECT_FLOAT_EQ(status.clippedPercent, 25.0f);
    EXPECT_EQ(status.outputReportSamples, 24u);
    EXPECT_EQ(status.outputReportNonZero, 24u);
    EXPECT_EQ(status.outputReportPeak, 9996);
    EXPECT_EQ(harness->engine.clipSamples, 0);
    EXPECT_EQ(harness->engine.outSamples, 0);
    EXPECT_EQ(harness->engine.outPeak, 0);
    EXPECT_EQ(harness->wheel.commandedForce.load(), 0);
}

TEST_F(EmitForceTest, ARepeatedTickNeitherStoresNorCounts) {
    harness->Run(SteadyFrame(5.0f));
    harness->Run(SteadyFrame(9.0f), true);
    EXPECT_EQ(TickPlatform::storeCount, 0);
    EXPECT_EQ(harness->engine.outSamples, 6);
}

TEST_F(EmitForceTest, LockStopStoresOnceAtIndexMinusOneAndCountsNothing) {
    TelemetryFrame frame = SteadyFrame(5.0f, 30.0f);
    frame.steeringWheelAngle = 5.0f;  // past half of 8 rad by more than 15 degrees
    frame.latAccel = 100.0f;          // a crash hit now would start a hold
    Settings().Damping = 40;
    harness->Run(frame);
    ASSERT_EQ(TickPlatform::storeCount, 1);
    EXPECT_EQ(TickPlatform::storedIndex[0], -1);
    EXPECT_EQ(TickPlatform::storedValue[0], -9996);
    EXPECT_EQ(harness->engine.clipSamples, 0);
    EXPECT_EQ(harness->engine.outSamples, 0);
    EXPECT_EQ(harness->engine.crashHoldUntil, 0);
    EXPECT_EQ(harness->wheel.dampingPercent.load(), 40);
    EXPECT_TRUE(harness->wheel.lockDamping.load());
}

TEST_F(EmitForceTest, CrashGainScalesEveryOutputOfTheTick) {
    TelemetryFrame frame = SteadyFrame(TorqueForUnits(8000), 30.0f);
    frame.longAccel = 70.0f;  // above 6 g
    Settings().UndersteerResistance = 0;
    Settings().OversteerCorrection = 0;
    harness->Run(frame);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(TickPlatform::storedValue[i], 400, 1) << i;  // 5 percent
}

}  // namespace
}  // namespace veltor::test
