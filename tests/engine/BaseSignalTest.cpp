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

TEST(ToOutputUnits, MapsFullScaleTorqueOfEachStrengthToTenThousand) {
    EXPECT_EQ(ToOutputUnits(20.0f, WithStrength(100)), 10000);
    EXPECT_EQ(ToOutputUnits(40.0f, WithStrength(50)), 10000);
    EXPECT_EQ(ToOutputUnits(80.0f, WithStrength(25)), 10000);
    EXPECT_EQ(ToOutputUnits(-40.0f, WithStrength(50)), -10000);
    EXPECT_FLOAT_EQ(FullScaleTorque(WithStrength(50)), 40.0f);
    EXPECT_FLOAT_EQ(FullScaleTorque(WithStrength(100)), 20.0f);
    EXPECT_FLOAT_EQ(FullScaleTorque(WithStrength(0)), 2000.0f);
}

TEST(ToOutputUnits, TruncatesTowardZeroAndDoesNotClamp) {
    EXPECT_EQ(ToOutputUnits(1.23f, WithStrength(50)), 307);    // 307.5
    EXPECT_EQ(ToOutputUnits(-1.23f, WithStrength(50)), -307);
    EXPECT_EQ(ToOutputUnits(-0.00399f, WithStrength(50)), 0);  // -0.9975
    EXPECT_EQ(ToOutputUnits(60.0f, WithStrength(50)), 15000);
}

TEST(ToOutputUnits, GivesZeroForZeroOrNegativeStrengthAndForNaN) {
    EXPECT_EQ(ToOutputUnits(35.0f, WithStrength(0)), 0);
    EXPECT_EQ(ToOutputUnits(35.0f, WithStrength(-5)), 0);
    EXPECT_EQ(ToOutputUnits(std::numeric_limits<float>::quiet_NaN(), WithStrength(50)), 0);
    EXPECT_GT(ToOutputUnits(1e30f, WithStrength(50)), 9996);
    EXPECT_LT(ToOutputUnits(-1e30f, WithStrength(50)), -9996);
}

TEST(ShapeOutput, ParkedReductionQuartersTowardZeroAndSkipsTheCurve) {
    const EngineSettings s = WithMinForce(20);
    EXPECT_EQ(ShapeOutput(9996, true, s), 2499);
    EXPECT_EQ(ShapeOutput(-3, true, s), 0);
    EXPECT_EQ(ShapeOutput(-7, true, s), -1);
    EXPECT_EQ(ShapeOutput(1, true, s), 0);  // the curve would have made it 3
}

TEST(ShapeOutput, ParkedWithoutTheSwitchGoesThroughTheCurve) {
    EXPECT_EQ(ShapeOutput(1, true, WithMinForce(20, false)), 3);
    EXPECT_EQ(ShapeOutput(9996, true, WithMinForce(0, false)), 9996);
}

TEST(ShapeOutput, LowForceCurveRaisesSmallForcesUpToTheKnee) {
    EXPECT_EQ(ShapeOutput(1, false, WithMinForce(20)), 3);
    EXPECT_EQ(ShapeOutput(-1, false, WithMinForce(20)), -3);
    EXPECT_EQ(ShapeOutput(4000, false, WithMinForce(20)), 4000);  // at the knee
    EXPECT_EQ(ShapeOutput(1000, false, WithMinForce(10)), 1250);  // t = 0.5, k = 2: h = 0.625
    EXPECT_EQ(ShapeOutput(500, false, WithMinForce(5)), 563);     // 562.5 rounds away from zero
    EXPECT_EQ(ShapeOutput(-500, false, WithMinForce(5)), -563);
    EXPECT_EQ(ShapeOutput(0, false, WithMinForce(20)), 0);
    EXPECT_EQ(ShapeOutput(1234, false, WithMinForce(0)), 1234);
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
}

TEST(SteeringLock, StopActsInFullAtStrengthZero) {
    EXPECT_EQ(ComputeSteeringLock(Steering(5.0f, 8.0f, 20.0f), WithStrength(0)).stopForce, -9996);
}

TEST(SteeringLock, NoStopForReportedLocksOfSixteenRadiansOrMore) {
    const SteeringLockResult r = ComputeSteeringLock(Steering(30.0f, 16.0f), EngineSettings{});
    EXPECT_FALSE(r.pastLock);
    EXPECT_FALSE(r.lockDamping);
    EXPECT_TRUE(ComputeSteeringLock(Steering(30.0f, 15.99f), EngineSettings{}).pastLock);
}

TEST(SteeringLock, ZeroLockPutsAnyNonZeroAngleOutside) {
    const SteeringLockResult r = ComputeSteeringLock(Steering(0.01f, 0.0f), EngineSettings{});
    EXPECT_TRUE(r.pastLock);
    EXPECT_NEAR(r.stopForce, -(0.01 / 0.2618) * 10000.0, 2.0);
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
