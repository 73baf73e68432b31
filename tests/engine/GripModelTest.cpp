#include <gtest/gtest.h>

#include "engine/GripModel.h"

namespace veltor {
namespace {

constexpr CarRow kRow{40.0f, 0.0f, 90.0f, 1.0f, 0.0f};

// A car at speed with the given slip and steering.
TelemetryFrame Moving(float speed, float velocityY = 0.0f, float angle = 0.0f) {
    TelemetryFrame frame;
    frame.speed = speed;
    frame.velocityX = speed;
    frame.velocityY = velocityY;
    frame.steeringWheelAngle = angle;
    return frame;
}

// The force balance applies at any speed, clamped to 0.5 to 1.5. The rest is neutral up to 5 m/s and
// without longitudinal velocity, and acts just above.
TEST(ComputeGrip, GatesAndTheForceBalance) {
    EngineSettings s;
    s.UndersteerLighten = 50;
    s.CarForceBalance = 200;
    TelemetryFrame noVelocityX = Moving(30.0f, 5.0f, 1.0f);
    noVelocityX.velocityX = 0.01f;
    for (const TelemetryFrame& neutral : {TelemetryFrame{}, Moving(5.0f, 2.0f, 1.0f), noVelocityX}) {
        const GripResult r = ComputeGrip(neutral, s, kRow);
        EXPECT_EQ(r.forceBalance, 1.5f);
        EXPECT_EQ(r.steeringGain, 1.0f);
        EXPECT_EQ(r.resistanceTorque + r.oversteerTorque + r.steerExcess, 0.0f);
    }
    s.CarForceBalance = 30;
    const GripResult above = ComputeGrip(Moving(5.01f, 2.0f, 1.0f), s, kRow);
    EXPECT_EQ(above.forceBalance, 0.5f);
    EXPECT_LT(above.steeringGain, 1.0f);
    EXPECT_LT(above.resistanceTorque, 0.0f);
    EXPECT_GT(above.oversteerTorque, 0.0f);
}

// The arctan approximation with the sign of the slip, the slide's value past a slip of one, the limit of half
// the full scale, and an offset taken off the angle. The replay over real telemetry pins the rest at the
// default slider: a reversing car, and the jump where the slip passes one.
TEST(ComputeGrip, OversteerFollowsTheSlipAngleApproximation) {
    const float b = 0.4609491f;  // slip 0.5
    const struct {
        float velocityX, velocityY;
        int32_t correction, strength, offset;
        float torque, tolerance;
    } cases[] = {{20.0f, 10.0f, 10, 0, 0, 7.09424f, 1e-4f},   {20.0f, -10.0f, 10, 0, 0, -7.09424f, 1e-4f},
                 {20.0f, -20.5f, 10, 0, 0, -7.85f, 4e-6f},
                 {20.0f, 40.0f, 150, 100, 0, 10.0f, 4e-6f},   {20.0f, -40.0f, 150, 100, 0, -10.0f, 4e-6f},
                 {20.0f, 40.0f, 150, 0, 0, 117.75f, 3e-5f},   {20.0f, 3.0f, 10, 0, 100, 0.0f, 0.0f},
                 {20.0f, 10.0f, 10, 0, 100, (b - 0.174533f) * (2.0f - b) * 10.0f, 1e-4f},
                 {20.0f, -10.0f, 10, 0, 100, -(b - 0.174533f) * (2.0f - b) * 10.0f, 1e-4f},
                 {20.0f, 10.0f, 0, 0, 0, 0.0f, 0.0f}};
    for (const auto& c : cases) {
        EngineSettings s;
        s.OversteerCorrection = c.correction;
        s.ForceStrength = c.strength;  // 0: full scale 2000 Nm, so the limit never binds
        s.OversteerOffset = c.offset;
        TelemetryFrame frame = Moving(20.0f, c.velocityY);
        frame.velocityX = c.velocityX;
        EXPECT_NEAR(ComputeGrip(frame, s, kRow).oversteerTorque, c.torque, c.tolerance)
            << c.velocityX << ", " << c.velocityY << " correction " << c.correction << " offset " << c.offset;
    }
}

// The steering that yaw and lateral acceleration do not explain, beyond a free margin, loads the resistance
// against the angle and, if asked, lightens the sim's torque down to a quarter.
TEST(ComputeGrip, UndersteerResistsAndLightens) {
    const struct {
        const char* what;
        float angle, yawRate, latAccel;
        CarRow row;
        int32_t resistance, lighten;
        float excess, load, torque, gain;
    } cases[] = {
        {"left", -0.5f, 0.0f, 0.0f, kRow, 75, 0, 0.325f, 0.325f, 9.75f, 1.0f},
        {"load capped at 1", 3.0f, 0.0f, 0.0f, {40.0f, 0.0f, 90.0f, 2.0f, 0.0f}, 75, 0, 2.825f, 1.0f, -60.0f, 1.0f},
        {"yaw and lateral explain it", 1.0f, 0.5f, 9.0f, {40.0f, 0.9f, 90.0f, 1.0f, 0.0f}, 75, 0, -0.725f, 0.0f, 0.0f,
         1.0f},
        {"negative steer gain counts as 0", 1.0f, 0.5f, 9.0f, {40.0f, -1.0f, 90.0f, 1.0f, 0.0f}, 75, 0, -0.275f, 0.0f,
         0.0f, 1.0f},
        {"margin bias on a straight wheel", 0.0f, 0.0f, 0.0f, {40.0f, 0.0f, 90.0f, 1.0f, 0.2f}, 75, 0, 0.025f, 0.025f,
         -0.75f, 1.0f},
        {"lightening without resistance", 0.5f, 0.0f, 0.0f, kRow, 0, 100, 0.325f, 0.0f, 0.0f, 1.0f - 0.325f * 0.75f},
        {"lightened to a quarter", 3.0f, 0.0f, 0.0f, kRow, 0, 100, 2.825f, 0.0f, 0.0f, 0.25f},
    };
    for (const auto& c : cases) {
        EngineSettings s;
        s.UndersteerResistance = c.resistance;
        s.UndersteerLighten = c.lighten;
        TelemetryFrame frame = Moving(20.0f, 0.0f, c.angle);
        frame.yawRate = c.yawRate;
        frame.latAccel = c.latAccel;
        const GripResult r = ComputeGrip(frame, s, c.row);
        EXPECT_NEAR(r.steerExcess, c.excess, 1e-5f) << c.what;
        EXPECT_NEAR(r.understeerLoad, c.load, 1e-5f) << c.what;
        EXPECT_NEAR(r.resistanceTorque, c.torque, 1e-4f) << c.what;
        EXPECT_NEAR(r.steeringGain, c.gain, 1e-6f) << c.what;
    }
}

}  // namespace
}  // namespace veltor
