#include <gtest/gtest.h>

#include "engine/SteeringLock.h"

namespace veltor {
namespace {

EngineSettings WithStrength(int32_t strength) {
    EngineSettings s;
    s.ForceStrength = strength;
    return s;
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
