#include <gtest/gtest.h>

#include "engine/GripModel.h"

namespace veltor {
namespace {

constexpr CarRow kRow{40.0f, 0.0f, 90.0f, 1.0f, 0.0f};

// A car at speed, driving straight ahead, with the given slip and steering.
TelemetryFrame Moving(float speed, float velocityY = 0.0f, float angle = 0.0f) {
    TelemetryFrame frame;
    frame.speed = speed;
    frame.velocityX = speed;
    frame.velocityY = velocityY;
    frame.steeringWheelAngle = angle;
    return frame;
}

EngineSettings Oversteer(int32_t correction, int32_t strength = 0) {
    EngineSettings s;
    s.OversteerCorrection = correction;
    s.ForceStrength = strength;  // 0: full scale 2000 Nm, so the limit never binds
    s.UndersteerResistance = 0;
    return s;
}

TEST(ComputeGrip, ForceBalanceAppliesAtAnySpeedClampedTo50To150) {
    EngineSettings s;
    s.CarForceBalance = 150;
    EXPECT_FLOAT_EQ(ComputeGrip(TelemetryFrame{}, s, kRow).forceBalance, 1.5f);
    s.CarForceBalance = 200;
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(30.0f), s, kRow).forceBalance, 1.5f);
    s.CarForceBalance = 30;
    EXPECT_FLOAT_EQ(ComputeGrip(TelemetryFrame{}, s, kRow).forceBalance, 0.5f);
}

TEST(ComputeGrip, IsNeutralAtFiveMetresPerSecondAndActsJustAbove) {
    EngineSettings s;
    s.UndersteerLighten = 50;
    const GripResult atGate = ComputeGrip(Moving(5.0f, 2.0f, 1.0f), s, kRow);
    EXPECT_EQ(atGate.steeringGain, 1.0f);
    EXPECT_EQ(atGate.resistanceTorque, 0.0f);
    EXPECT_EQ(atGate.oversteerTorque, 0.0f);
    EXPECT_EQ(atGate.steerExcess, 0.0f);
    const GripResult above = ComputeGrip(Moving(5.01f, 2.0f, 1.0f), s, kRow);
    EXPECT_LT(above.steeringGain, 1.0f);
    EXPECT_LT(above.resistanceTorque, 0.0f);
    EXPECT_GT(above.oversteerTorque, 0.0f);
}

TEST(ComputeGrip, IsNeutralWithoutLongitudinalVelocity) {
    TelemetryFrame frame = Moving(30.0f, 5.0f, 1.0f);
    frame.velocityX = 0.01f;
    const GripResult r = ComputeGrip(frame, EngineSettings{}, kRow);
    EXPECT_EQ(r.resistanceTorque, 0.0f);
    EXPECT_EQ(r.oversteerTorque, 0.0f);
}

// The arctan approximation with the sign of the slip (taken against |velocityX|), its jump down where the
// slip passes one, and the limit of half the full scale.
TEST(ComputeGrip, OversteerFollowsTheSlipAngleApproximation) {
    struct Case {
        float velocityX, velocityY;
        int32_t correction, strength;
        float torque, tolerance;
    };
    const Case cases[] = {{20.0f, 10.0f, 10, 0, 7.09424f, 1e-4f},   {20.0f, -10.0f, 10, 0, -7.09424f, 1e-4f},
                          {-20.0f, 10.0f, 10, 0, 7.09424f, 1e-4f},  {20.0f, 19.999f, 10, 0, 9.54f, 0.01f},
                          {20.0f, 20.5f, 10, 0, 7.85f, 4e-6f},      {20.0f, -20.5f, 10, 0, -7.85f, 4e-6f},
                          {20.0f, 40.0f, 150, 100, 10.0f, 4e-6f},   {20.0f, -40.0f, 150, 100, -10.0f, 4e-6f},
                          {20.0f, 40.0f, 150, 0, 117.75f, 3e-5f}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.velocityX << ", " << c.velocityY << " m/s, correction " << c.correction);
        TelemetryFrame frame = Moving(20.0f, c.velocityY);
        frame.velocityX = c.velocityX;
        const GripResult grip = ComputeGrip(frame, Oversteer(c.correction, c.strength), kRow);
        EXPECT_NEAR(grip.oversteerTorque, c.torque, c.tolerance);
    }
}

TEST(ComputeGrip, OversteerOffsetLeavesSmallSlipAloneAndIsTakenOffLargerSlip) {
    EngineSettings s = Oversteer(10);
    s.OversteerOffset = 100;  // 0.17453 rad
    EXPECT_EQ(ComputeGrip(Moving(20.0f, 3.0f), s, kRow).oversteerTorque, 0.0f);  // b = 0.1526
    const float b = 0.4609491f;  // slip 0.5
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, 10.0f), s, kRow).oversteerTorque, (b - 0.174533f) * (2.0f - b) * 10.0f,
                1e-4f);
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, -10.0f), s, kRow).oversteerTorque, -(b - 0.174533f) * (2.0f - b) * 10.0f,
                1e-4f);
    s.OversteerCorrection = 0;
    EXPECT_EQ(ComputeGrip(Moving(20.0f, 10.0f), s, kRow).oversteerTorque, 0.0f);
}

TEST(ComputeGrip, ResistanceOpposesSteeringBeyondTheFreeMargin) {
    const EngineSettings s;  // resistance 75
    const GripResult right = ComputeGrip(Moving(20.0f, 0.0f, 0.5f), s, kRow);
    EXPECT_NEAR(right.steerExcess, 0.325f, 1e-6f);
    EXPECT_NEAR(right.understeerLoad, 0.325f, 1e-6f);
    EXPECT_NEAR(right.resistanceTorque, -9.75f, 1e-4f);
    EXPECT_EQ(right.steeringGain, 1.0f);  // lightening off by default
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, 0.0f, -0.5f), s, kRow).resistanceTorque, 9.75f, 1e-4f);
    const CarRow heavy{40.0f, 0.0f, 90.0f, 2.0f, 0.0f};
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, 0.0f, 3.0f), s, heavy).resistanceTorque, -60.0f, 1e-4f);  // load 1
}

TEST(ComputeGrip, YawAndLateralAccelerationExplainTheSteering) {
    TelemetryFrame frame = Moving(20.0f, 0.0f, 1.0f);
    frame.yawRate = 0.5f;  // yaw term 0.5 × 40 / 20 = 1.0
    frame.latAccel = 9.0f;  // 0.1 at a divisor of 90
    const CarRow boosted{40.0f, 0.9f, 90.0f, 1.0f, 0.0f};  // steer gain counts as 0.45: boost 1.45
    const GripResult r = ComputeGrip(frame, EngineSettings{}, boosted);
    EXPECT_NEAR(r.steerExcess, 1.0f - 1.55f - 0.175f, 1e-5f);
    EXPECT_EQ(r.understeerLoad, 0.0f);
    EXPECT_EQ(r.resistanceTorque, 0.0f);
    const CarRow negative{40.0f, -1.0f, 90.0f, 1.0f, 0.0f};  // counts as 0
    EXPECT_NEAR(ComputeGrip(frame, EngineSettings{}, negative).steerExcess, 1.0f - 1.1f - 0.175f, 1e-5f);
}

TEST(ComputeGrip, MarginBiasCanMakeAStraightWheelUndersteer) {
    const CarRow biased{40.0f, 0.0f, 90.0f, 1.0f, 0.2f};
    const GripResult r = ComputeGrip(Moving(20.0f), EngineSettings{}, biased);
    EXPECT_NEAR(r.steerExcess, 0.025f, 1e-6f);
    EXPECT_LT(r.resistanceTorque, 0.0f);  // angle 0 counts as positive
}

TEST(ComputeGrip, LighteningScalesTheSimTorqueDownToAQuarter) {
    EngineSettings s;
    s.UndersteerLighten = 100;
    s.UndersteerResistance = 0;
    const GripResult r = ComputeGrip(Moving(20.0f, 0.0f, 0.5f), s, kRow);
    EXPECT_NEAR(r.steeringGain, 1.0f - 0.325f * 0.75f, 1e-6f);
    EXPECT_EQ(r.understeerLoad, 0.0f);  // resistance off: nothing recorded though lightening acts
    EXPECT_EQ(r.resistanceTorque, 0.0f);
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(20.0f, 0.0f, 3.0f), s, kRow).steeringGain, 0.25f);
}

}  // namespace
}  // namespace veltor
