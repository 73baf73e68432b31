#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "engine/BaseSignal.h"

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

TEST(BaseTorque, TakesTheSubSampleRepeatsTheLastAndAppliesGainThenBalance) {
    TelemetryFrame frame;
    frame.torqueSampleCount = 2;
    frame.torqueSamples[0] = 4.0f;
    frame.torqueSamples[1] = -8.0f;
    frame.steeringWheelTorque = 100.0f;
    GripResult grip;
    grip.steeringGain = 0.5f;
    grip.forceBalance = 1.5f;
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 0), 3.0f);
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 1), -6.0f);
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 5), -6.0f);
    frame.torqueSampleCount = 0;
    EXPECT_FLOAT_EQ(BaseTorque(frame, grip, 3), 75.0f);
}

TelemetryFrame Steering(float angle, float angleMax, float torque = 0.0f) {
    TelemetryFrame frame;
    frame.steeringWheelAngle = angle;
    frame.steeringWheelAngleMax = angleMax;
    frame.steeringWheelTorque = torque;
    return frame;
}

TEST(SteeringLock, StopsOnlyStrictlyPastHalfTheLock) {
    const EngineSettings s;
    EXPECT_FALSE(ComputeSteeringLock(Steering(4.0f, 8.0f), s).pastLock);
    EXPECT_TRUE(ComputeSteeringLock(Steering(4.0f, 8.0f), s).lockDamping);
    const SteeringLockResult past = ComputeSteeringLock(Steering(4.01f, 8.0f), s);
    EXPECT_TRUE(past.pastLock);
    EXPECT_LT(past.stopForce, 0);  // pushes a positive angle back
}

TEST(SteeringLock, LockDampingStartsThirtyDegreesShortOfTheLock) {
    const EngineSettings s;
    EXPECT_TRUE(ComputeSteeringLock(Steering(-3.5f, 8.0f), s).lockDamping);
    EXPECT_FALSE(ComputeSteeringLock(Steering(-3.4f, 8.0f), s).lockDamping);
    EXPECT_FALSE(ComputeSteeringLock(Steering(-3.5f, 8.0f), s).pastLock);
}

TEST(SteeringLock, StopForceBlendsFromTheSimTorqueToFullOverFifteenDegrees) {
    const EngineSettings s;  // strength 50: 20 Nm is 5000 units
    const SteeringLockResult half = ComputeSteeringLock(Steering(-(4.0f + 0.1309f), 8.0f, 20.0f), s);
    EXPECT_NEAR(half.stopForce, 5000 * 0.5 + 10000 * 0.5, 2);
    EXPECT_EQ(ComputeSteeringLock(Steering(5.0f, 8.0f, 20.0f), s).stopForce, -9996);
    EXPECT_EQ(ComputeSteeringLock(Steering(-5.0f, 8.0f, -20.0f), s).stopForce, 9996);
    EXPECT_EQ(ComputeSteeringLock(Steering(5.0f, 8.0f, 20.0f), WithStrength(0)).stopForce, -9996);  // in full
}

// Reported locks of 16 rad or more have no stop; a zero lock puts any non-zero angle outside.
TEST(SteeringLock, EdgesOfTheReportedLock) {
    const SteeringLockResult wide = ComputeSteeringLock(Steering(30.0f, 16.0f), EngineSettings{});
    EXPECT_FALSE(wide.pastLock);
    EXPECT_FALSE(wide.lockDamping);
    EXPECT_TRUE(ComputeSteeringLock(Steering(30.0f, 15.99f), EngineSettings{}).pastLock);
    const SteeringLockResult zero = ComputeSteeringLock(Steering(0.01f, 0.0f), EngineSettings{});
    EXPECT_TRUE(zero.pastLock);
    EXPECT_NEAR(zero.stopForce, -(0.01 / 0.2618) * 10000.0, 2.0);
    EXPECT_FALSE(ComputeSteeringLock(Steering(0.0f, 0.0f), EngineSettings{}).pastLock);
}

TEST(SteeringLock, HandsOverDampingClampedToAPercentage) {
    EngineSettings s;
    s.Damping = 150;
    EXPECT_EQ(ComputeSteeringLock(Steering(0.0f, 8.0f), s).dampingPercent, 100);
    s.Damping = -5;
    EXPECT_EQ(ComputeSteeringLock(Steering(0.0f, 8.0f), s).dampingPercent, 0);
    s.Damping = 37;
    EXPECT_EQ(ComputeSteeringLock(Steering(5.0f, 8.0f), s).dampingPercent, 37);
}

}  // namespace
}  // namespace veltor
