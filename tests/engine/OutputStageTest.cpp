#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TickHarness.h"
#include "engine/OutputStage.h"

namespace veltor {
namespace {

EngineSettings WithStrength(int32_t strength) {
    EngineSettings s;
    s.ForceStrength = strength;
    return s;
}

EngineSettings WithMinForce(int32_t minForce, bool reduceWhenParked = true) {
    EngineSettings s;
    s.MinForce = minForce;
    s.ReduceForceWhenParked = reduceWhenParked;
    return s;
}

// Full scale of each strength maps to 10000; truncation toward zero, no clamp; zero for no strength or NaN.
TEST(ToOutputUnits, TruncatesTowardZeroAtTheStrengthsFullScale) {
    struct Case {
        float torque;
        int32_t strength;
        int32_t units;
    };
    const Case cases[] = {{20.0f, 100, 10000}, {40.0f, 50, 10000},  {80.0f, 25, 10000},    {-40.0f, 50, -10000},
                          {1.23f, 50, 307},    {-1.23f, 50, -307},  {-0.00399f, 50, 0},    {60.0f, 50, 15000},
                          {35.0f, 0, 0},       {35.0f, -5, 0},      {std::numeric_limits<float>::quiet_NaN(), 50, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.torque << " Nm at strength " << c.strength);
        EXPECT_EQ(ToOutputUnits(c.torque, WithStrength(c.strength)), c.units);
    }
    EXPECT_FLOAT_EQ(FullScaleTorque(WithStrength(50)), 40.0f);
    EXPECT_FLOAT_EQ(FullScaleTorque(WithStrength(0)), 2000.0f);
    EXPECT_GT(ToOutputUnits(1e30f, WithStrength(50)), 9996);
    EXPECT_LT(ToOutputUnits(-1e30f, WithStrength(50)), -9996);
}

// Parked reduction quarters toward zero and skips the curve; the curve raises small forces up to the knee.
TEST(ShapeOutput, ParkedReductionAndLowForceCurve) {
    struct Case {
        int32_t value;
        bool parked;
        int32_t minForce;
        bool reduceWhenParked;
        int32_t shaped;
    };
    const Case cases[] = {
        {9996, true, 20, true, 2499}, {-3, true, 20, true, 0},    {-7, true, 20, true, -1},
        {1, true, 20, true, 0},  // the curve would have made it 3
        {1, true, 20, false, 3},      {9996, true, 0, false, 9996}, {1, false, 20, true, 3},
        {-1, false, 20, true, -3},    {4000, false, 20, true, 4000},  // at the knee
        {1000, false, 10, true, 1250},                                // t = 0.5, k = 2: h = 0.625
        {500, false, 5, true, 563},                                   // 562.5 rounds away from zero
        {-500, false, 5, true, -563}, {0, false, 20, true, 0},      {1234, false, 0, true, 1234}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << (c.parked ? " parked" : "") << " MinForce " << c.minForce);
        EXPECT_EQ(ShapeOutput(c.value, c.parked, WithMinForce(c.minForce, c.reduceWhenParked)), c.shaped);
    }
}

TEST(ShapeOutput, CurveNeverLowersAForceAndMeetsTheInputAtTheKnee) {
    const int32_t knees[][2] = {{1, 500}, {4, 800}, {5, 1000}, {10, 2000}, {20, 4000}};
    for (const auto& [minForce, knee] : knees) {
        int32_t previous = 0;
        for (int32_t v = 1; v <= knee + 10; ++v) {
            const int32_t shaped = ShapeOutput(v, false, WithMinForce(minForce));
            ASSERT_GE(shaped, v) << "MinForce " << minForce << " value " << v;
            ASSERT_GE(shaped, previous) << "MinForce " << minForce << " value " << v;
            if (v < knee) {
                ASSERT_LE(shaped, knee) << "MinForce " << minForce << " value " << v;
            } else {
                ASSERT_EQ(shaped, v);
            }
            previous = shaped;
        }
    }
}

}  // namespace
}  // namespace veltor

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

// 9996 is handed over as it is; above it the value is clipped and counted. Each output stores at its index.
TEST(EmitForce, HandsOver9996UnclippedAndClipsAboveIt) {
    auto harness = std::make_unique<TickHarness>();
    harness->Run(SteadyFrame(TorqueForUnits(9996)));
    ASSERT_EQ(TickPlatform::storeCount, 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(TickPlatform::storedIndex[i], i);
    EXPECT_EQ(TickPlatform::storedValue[5], 9996);
    EXPECT_EQ(harness->engine.clipOver, 0);
    harness->Run(SteadyFrame(TorqueForUnits(9997)));
    EXPECT_EQ(TickPlatform::storedValue[5], 9996);
    harness->Run(SteadyFrame(-TorqueForUnits(20000)));
    EXPECT_EQ(harness->wheel.commandedForce.load(), -9996);
    EXPECT_EQ(harness->engine.clipSamples, 18);
    EXPECT_EQ(harness->engine.clipOver, 12);
}

// A stint's reports at the first frame off track. Clipping is measured before the parked quarter and the
// low-force curve; a strength of 0 still reports its samples; a stint past the lock has no output at all.
TEST(EmitForce, AStintReportsItsClippedShareSamplesAndPeak) {
    const struct {
        const char* what;
        std::vector<int32_t> ticks;  // output units of each tick's six outputs
        float speed, angle;
        int32_t strength;
        float clipped;
        uint32_t samples, nonZero;
        int32_t peak;
    } cases[] = {
        {"one clipped tick in four", {12000, 250, 250, 250}, 3.0f, 0.0f, 50, 25.0f, 24, 24, 9996},
        {"parked: clipped, a quarter handed over", {12000}, 1.0f, 0.0f, 50, 100.0f, 6, 6, 2499},
        {"strength 0", {4000, 4000}, 3.0f, 0.0f, 0, 0.0f, 12, 0, 0},
        {"past the lock", {4000, 4000}, 3.0f, 5.0f, 50, 0.0f, 0, 0, 0},
    };
    for (const auto& c : cases) {
        auto harness = std::make_unique<TickHarness>();
        harness->engine.settings.ForceStrength = c.strength;
        for (const int32_t units : c.ticks) {
            TelemetryFrame frame = SteadyFrame(TorqueForUnits(units), c.speed);
            frame.steeringWheelAngle = c.angle;
            harness->Run(frame);
        }
        harness->Run(TelemetryFrame{});
        const EngineStatus status = harness->engine.CopyStatus();
        EXPECT_EQ(status.clipReportCount, 1u) << c.what;
        EXPECT_FLOAT_EQ(status.clippedPercent, c.clipped) << c.what;
        EXPECT_EQ(status.outputReportSamples, c.samples) << c.what;
        EXPECT_EQ(status.outputReportNonZero, c.nonZero) << c.what;
        EXPECT_EQ(status.outputReportPeak, c.peak) << c.what;
        EXPECT_EQ(harness->engine.clipSamples + harness->engine.outSamples + harness->engine.outPeak, 0) << c.what;
        EXPECT_EQ(harness->wheel.commandedForce.load(), 0) << c.what;
    }
}

// A repeated tick neither stores nor counts. Past the lock a single stop force is stored at index -1,
// counted in no statistic, and no crash hold begins.
TEST(EmitForce, RepeatsAndTheLockStopStayOutOfTheStatistics) {
    auto harness = std::make_unique<TickHarness>();
    harness->Run(SteadyFrame(5.0f));
    harness->Run(SteadyFrame(9.0f), true);
    EXPECT_EQ(TickPlatform::storeCount, 0);
    TelemetryFrame frame = SteadyFrame(5.0f, 30.0f);
    frame.steeringWheelAngle = 5.0f;  // past half of 8 rad by more than 15 degrees
    frame.latAccel = 100.0f;          // a crash hit now would start a hold
    harness->engine.settings.Damping = 40;
    harness->Run(frame);
    ASSERT_EQ(TickPlatform::storeCount, 1);
    EXPECT_EQ(TickPlatform::storedIndex[0], -1);
    EXPECT_EQ(TickPlatform::storedValue[0], -9996);
    EXPECT_EQ(harness->engine.outSamples, 6);
    EXPECT_EQ(harness->engine.clipSamples, 6);
    EXPECT_EQ(harness->engine.crashHoldUntil, 0);
    EXPECT_EQ(harness->wheel.dampingPercent.load(), 40);
    EXPECT_TRUE(harness->wheel.lockDamping.load());
}

TEST(EmitForce, CrashGainScalesEveryOutputOfTheTick) {
    auto harness = std::make_unique<TickHarness>();
    TelemetryFrame frame = SteadyFrame(TorqueForUnits(8000), 30.0f);
    frame.longAccel = 70.0f;  // above 6 g
    harness->engine.settings.UndersteerResistance = 0;
    harness->engine.settings.OversteerCorrection = 0;
    harness->Run(frame);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(TickPlatform::storedValue[i], 400, 1) << i;  // 5 percent
}

}  // namespace
}  // namespace veltor::test
