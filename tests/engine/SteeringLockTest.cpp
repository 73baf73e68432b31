#include <gtest/gtest.h>

#include "engine/SteeringLock.h"

namespace veltor {
namespace {

// Lock damping from 30 degrees short of half the reported lock; strictly past it a stop force that blends
// from the sim's torque to full scale over 15 degrees, against the angle. A reported half-lock of 8 rad or
// more has no stop; a zero lock puts any non-zero angle outside. Strength 50: 20 Nm is 5000 units. The
// damping slider is handed over as a percentage, near the lock or not.
TEST(SteeringLock, DampingNearTheLockAndAStopForcePastIt) {
    const struct {
        float angle, angleMax, torque;
        int32_t strength;
        bool lockDamping, pastLock;
        int32_t stopForce;
        int32_t damping = 30, percent = 30;
    } cases[] = {
        {-3.4f, 8.0f, 0.0f, 50, false, false, 0},     {-3.5f, 8.0f, 0.0f, 50, true, false, 0},
        {4.0f, 8.0f, 0.0f, 50, true, false, 0},       {4.01f, 8.0f, 0.0f, 50, true, true, -381},
        {-4.1309f, 8.0f, 20.0f, 50, true, true, 7499}, {5.0f, 8.0f, 20.0f, 50, true, true, -9996},
        {-5.0f, 8.0f, -20.0f, 50, true, true, 9996},  {5.0f, 8.0f, 20.0f, 0, true, true, -9996},
        {30.0f, 16.0f, 0.0f, 50, false, false, 0},    {30.0f, 15.99f, 0.0f, 50, true, true, -9996},
        {0.01f, 0.0f, 0.0f, 50, true, true, -381},    {0.0f, 0.0f, 0.0f, 50, true, false, 0},
        {5.0f, 8.0f, 20.0f, 50, true, true, -9996, 150, 100}, {0.0f, 8.0f, 0.0f, 50, false, false, 0, -5, 0},
    };
    for (const auto& c : cases) {
        EngineSettings s;
        s.ForceStrength = c.strength;
        s.Damping = c.damping;
        TelemetryFrame frame;
        frame.steeringWheelAngle = c.angle;
        frame.steeringWheelAngleMax = c.angleMax;
        frame.steeringWheelTorque = c.torque;
        const SteeringLockResult r = ComputeSteeringLock(frame, s);
        SCOPED_TRACE(testing::Message() << c.angle << " of " << c.angleMax);
        EXPECT_EQ(r.lockDamping, c.lockDamping);
        EXPECT_EQ(r.pastLock, c.pastLock);
        EXPECT_EQ(r.dampingPercent, c.percent);
        if (c.pastLock) {
            EXPECT_NEAR(r.stopForce, c.stopForce, 2);
        }
    }
}

}  // namespace
}  // namespace veltor
