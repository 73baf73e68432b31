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

TEST(ComputeGrip, OversteerFollowsTheArctanApproximationWithTheSignOfTheSlip) {
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, 10.0f), Oversteer(10), kRow).oversteerTorque, 7.09424f, 1e-4f);
    EXPECT_NEAR(ComputeGrip(Moving(20.0f, -10.0f), Oversteer(10), kRow).oversteerTorque, -7.09424f, 1e-4f);
    TelemetryFrame reversing = Moving(20.0f, 10.0f);
    reversing.velocityX = -20.0f;  // slip is taken against |velocityX|
    EXPECT_NEAR(ComputeGrip(reversing, Oversteer(10), kRow).oversteerTorque, 7.09424f, 1e-4f);
}

TEST(ComputeGrip, OversteerJumpsDownWhereTheSlipPassesOne) {
    const float below = ComputeGrip(Moving(20.0f, 19.999f), Oversteer(10), kRow).oversteerTorque;
    const float above = ComputeGrip(Moving(20.0f, 20.5f), Oversteer(10), kRow).oversteerTorque;
    EXPECT_NEAR(below, 9.54f, 0.01f);
    EXPECT_FLOAT_EQ(above, 7.85f);
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(20.0f, -20.5f), Oversteer(10), kRow).oversteerTorque, -7.85f);
}

TEST(ComputeGrip, OversteerIsLimitedToHalfTheFullScale) {
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(20.0f, 40.0f), Oversteer(150, 100), kRow).oversteerTorque, 10.0f);
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(20.0f, -40.0f), Oversteer(150, 100), kRow).oversteerTorque, -10.0f);
    EXPECT_FLOAT_EQ(ComputeGrip(Moving(20.0f, 40.0f), Oversteer(150, 0), kRow).oversteerTorque, 117.75f);
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

TEST(FillCorrectionRamp, RisesAlongTheRunningSumOfTheWeights) {
    float ramp[6] = {};
    float correction[6] = {};
    FillCorrectionRamp(ramp, 10.0f, correction);
    const float rising[6] = {1.295867f, 3.607303f, 6.189812f, 8.113748f, 9.270466f, 10.0f};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], rising[i], 1e-5f) << i;

    FillCorrectionRamp(ramp, 0.0f, correction);  // and back down from the full old value
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(correction[i], 10.0f - rising[i], 1e-5f) << i;
}

TEST(FillCorrectionRamp, AShortTickStopsPartWayAndTheNextStartsFromTheNewValue) {
    float ramp[6] = {};
    float correction[6] = {};
    FillCorrectionRamp(ramp, 10.0f, correction);
    FillCorrectionRamp(ramp, 20.0f, correction);
    EXPECT_NEAR(correction[0], 10.0f + 1.295867f, 1e-5f);
    EXPECT_NEAR(correction[5], 20.0f, 1e-5f);
}

}  // namespace
}  // namespace veltor
