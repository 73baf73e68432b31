// The force's stages, each a function of the frame and the settings. The replay over real telemetry pins
// what they give on an ordinary drive at the default sliders; here are their ends, clamps and switches.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "engine/AbsVibration.h"
#include "engine/BaseTorque.h"
#include "engine/CrashProtection.h"
#include "engine/GripModel.h"
#include "engine/MixForce.h"
#include "engine/RoadTexture.h"
#include "engine/SteeringLock.h"

namespace veltor {
namespace {

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

// The 35 Hz sine at the default 15 % (3 Nm), in both modes and across ticks, is pinned by the replay over
// real telemetry; here what that drive never sets: a slider past 100 % holds 20 Nm, and one at 0 or below
// is off and restarts the phase.
TEST(FillAbsVibration, TwentyNewtonMetresAtMostAndNothingWithTheSliderOff) {
    EngineSettings s;
    s.AbsVibration = 150;
    TelemetryFrame frame;
    frame.brakeAbsActive = 1;
    float phase = 6.2f;
    float vibration[kMaxOutputsPerTick] = {};
    FillAbsVibration(frame, s, true, 2, phase, vibration);
    const double step = 219.9115 / 720.0;
    EXPECT_NEAR(vibration[0], 20.0 * std::sin(6.2), 1e-4);
    EXPECT_NEAR(vibration[1], 20.0 * std::sin(6.2 + step), 1e-4);
    EXPECT_EQ(vibration[2], 0.0f);
    EXPECT_NEAR(phase, 6.2 + 2 * step - 6.2831855, 1e-5) << "kept below 2 pi";
    for (const int32_t off : {0, -5}) {
        s.AbsVibration = off;
        float none[kMaxOutputsPerTick] = {};
        phase = 1.0f;
        FillAbsVibration(frame, s, false, 6, phase, none);
        EXPECT_EQ(phase, 0.0f);
        EXPECT_EQ(none[0], 0.0f);
    }
}

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

// 640 Nm per metre at the default sliders; road and impact weigh the same at the 3.5 mm crossover, the
// impact part alone passes large movements and ignores small ones.
TEST(ComputeTexture, BlendsRoadAndImpactByTheSizeOfTheMovement) {
    const struct {
        float movement;
        int32_t bumps, impacts;
        float texture, tolerance;
    } cases[] = {{0.001f, 20, 20, 0.64f, 1e-6f},  {-0.02f, 20, 20, -12.8f, 1e-5f},
                 {0.0f, 20, 20, 0.0f, 0.0f},      {0.0035f, 20, 0, 1.12f, 1e-6f},
                 {0.0035f, 0, 20, 1.12f, 1e-6f},  {0.0035f, 10, 30, 0.5f * 0.0035f * (160.0f + 1440.0f), 1e-5f},
                 {0.0001f, 0, 20, 0.0f, 1e-4f},   {-0.1f, 0, 20, -64.0f * 0.99878f, 0.01f},
                 {0.01f, -5, 0, 0.0f, 0.0f}};
    for (const auto& c : cases) {
        EngineSettings s;
        s.Bumps = c.bumps;
        s.BumpImpacts = c.impacts;
        EXPECT_NEAR(ComputeTexture(c.movement, s), c.texture, c.tolerance)
            << c.movement << " " << c.bumps << "/" << c.impacts;
    }
}

// Front shocks: left movement minus right; the first sample compares with the previous frame's newest;
// samples beyond the count repeat the last movement; the centre shock when the sides are missing. Nothing
// without a previous frame, below walking speed, in reverse, or with both sliders off.
TEST(SubSampleTexture, FollowsTheFrontShocksMovementPerSubSample) {
    const std::vector<float> rising = {0.001f, 0.002f, 0.003f, 0.004f, 0.005f, 0.006f};
    const std::vector<float> flat(6, 0.0f);
    const struct {
        const char* what;
        std::vector<float> left, right, centre;
        float previousLeft, previousCentre;
        int sample;
        float texture;
        float speed = 20.0f;
        bool previous = true, sliders = true;
    } cases[] = {
        {"left rises", rising, flat, {}, 0.0f, 0.0f, 3, 0.64f},
        {"right rises", flat, rising, {}, 0.0f, 0.0f, 2, -0.64f},
        {"both alike cancel", rising, rising, {}, 0.0f, 0.0f, 3, 0.0f},
        {"first against the previous frame", rising, flat, {}, -0.002f, 0.0f, 0, 1.92f},
        {"beyond the count", {0.001f, 0.004f}, {0.0f, 0.0f}, {}, 0.0f, 0.0f, 5, 1.92f},
        {"centre, first", {}, {}, {0.001f, 0.003f, 0.002f}, 0.0f, 0.002f, 0, -0.64f},
        {"centre, beyond the count", {}, {}, {0.001f, 0.003f, 0.002f}, 0.0f, 0.0f, 4, -0.64f},
        {"no shocks", {}, {}, {}, 0.0f, 0.0f, 0, 0.0f},
        {"no previous frame", rising, flat, {}, 0.0f, 0.0f, 3, 0.0f, 20.0f, false},
        {"walking speed", rising, flat, {}, 0.0f, 0.0f, 3, 0.0f, 2.0f},
        {"reversing", rising, flat, {}, 0.0f, 0.0f, 3, 0.0f, -20.0f},
        {"both sliders off", rising, flat, {}, 0.0f, 0.0f, 3, 0.0f, 20.0f, true, false},
    };
    for (const auto& c : cases) {
        TelemetryFrame frame;
        frame.valid = 1;
        frame.speed = c.speed;
        frame.shockSampleCount = static_cast<int32_t>(c.left.size());
        frame.cfShockSampleCount = static_cast<int32_t>(c.centre.size());
        std::copy(c.left.begin(), c.left.end(), frame.lfShockDeflSamples);
        std::copy(c.right.begin(), c.right.end(), frame.rfShockDeflSamples);
        std::copy(c.centre.begin(), c.centre.end(), frame.cfShockDeflSamples);
        TelemetryFrame previous;
        previous.valid = c.previous ? 1 : 0;
        previous.lfShockDefl = c.previousLeft;
        previous.cfShockDefl = c.previousCentre;
        EngineSettings settings;
        if (!c.sliders) settings.Bumps = settings.BumpImpacts = 0;
        EXPECT_NEAR(SubSampleTexture(frame, previous, c.sample, settings), c.texture, 1e-4f) << c.what;
    }
}

// Texture against the force ducks it by the priority's slope, down to zero but never across; texture along
// with it near full scale shrinks only the resistance. `acted` is -1 where the case does not pin it.
TEST(MixForce, PriorityDucksOpposingTextureAndMakesRoomForTextureAlongside) {
    struct Case {
        const char* what;
        int32_t priority, strength;
        float main, resistance, texture, other, mixed;
        int acted;
    };
    const Case cases[] = {
        {"plain sum without priority", 0, 50, 30.0f, 9.0f, -20.0f, 1.0f, 20.0f, 0},
        {"tiny texture", 50, 50, 39.0f, 5.0f, 0.09f, 1.0f, 45.09f, 0},
        {"duck 1.1 x 5", 50, 50, 20.0f, 0.0f, -5.0f, 0.0f, 9.5f, 1},
        {"priority 100", 100, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 6.6f - 4.0f, -1},
        {"priority 150 as 100", 150, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 6.6f - 4.0f, -1},
        {"priority 1", 1, 50, 20.0f, 0.0f, -4.0f, 0.0f, 20.0f - 2.244f - 4.0f, -1},
        {"negative force", 50, 50, -20.0f, 2.0f, 5.0f, 1.0f, -17.0f + 5.5f + 5.0f, -1},
        {"ducked to zero, not across", 50, 50, 3.0f, 0.0f, -5.0f, 0.0f, -5.0f, 1},
        {"opposing below 2.5 Nm", 50, 50, 20.0f, 0.0f, -2.4f, 0.0f, 17.6f, 0},
        {"strength 10: threshold 12 Nm", 50, 10, 50.0f, 0.0f, -11.0f, 0.0f, 39.0f, -1},
        {"strength 10: at 12 Nm", 50, 10, 50.0f, 0.0f, -12.0f, 0.0f, 50.0f - 13.2f - 12.0f, -1},
        {"zero force never ducked", 50, 50, 0.0f, 0.0f, 5.0f, 0.0f, 5.0f, 0},
        {"room 30: resistance 8 to 2", 50, 50, 28.0f, 8.0f, 5.0f, 0.0f, 35.0f, 1},
        {"main above the room: no resistance", 50, 50, 30.0f, 8.0f, 5.0f, 2.0f, 37.0f, -1},
        {"the same, negative", 50, 50, -30.0f, -8.0f, -5.0f, 0.0f, -35.0f, -1},
        {"alongside texture that fits", 50, 50, 25.0f, 8.0f, 5.0f, 0.0f, 38.0f, 0},
        {"alongside without resistance", 50, 50, 45.0f, 0.0f, 5.0f, 0.0f, 50.0f, 0},
        {"resistance against the force stays", 50, 50, 44.0f, -8.0f, 5.0f, 0.0f, 41.0f, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EngineSettings s;
        s.SuspensionDetailPriority = c.priority;
        s.ForceStrength = c.strength;
        bool acted = c.acted == 0;
        EXPECT_NEAR(MixForce(s, c.main, c.resistance, c.texture, c.other, &acted), c.mixed, 1e-5f);
        if (c.acted >= 0) {
            EXPECT_EQ(acted, c.acted == 1);
        }
    }
}

constexpr int64_t kMs = 1000000;
constexpr float kOneG = 9.80665f;

// Ticks of one script: at `ms`, the accelerations and the gain expected back.
struct Step {
    int64_t ms;
    float longAccel, latAccel;
    float gain;
};

// A hit at or above a limit holds the gain down until one duration after the last hit; a limit of 0
// switches its axis off, yet a hold already running lasts; no duration or no reduction ends it at once.
TEST(ComputeCrashGain, HoldsTheForceDownForTheDurationAfterTheLastHit) {
    const struct {
        const char* what;
        int32_t reduction, longLimit, latLimit, durationTenths;
        int64_t holdMs;
        std::vector<Step> steps;
    } cases[] = {
        {"a hit at the limit", 95, 10, 10, 15, 0, {{1000, 0, -kOneG, 0.05f}, {2499, 0, 0, 0.05f}, {2500, 0, 0, 1.0f}}},
        {"just below the limit", 95, 10, 10, 15, 0, {{1000, 9.8f, -9.8f, 1.0f}}},
        {"each hit starts the hold anew", 95, 10, 10, 15, 0,
         {{1000, 20, 0, 0.05f}, {2000, -20, 0, 0.05f}, {3499, 0, 0, 0.05f}, {3500, 0, 0, 1.0f}}},
        {"the gain never falls below 0.01", 250, 10, 10, 15, 0, {{1000, 20, 0, 0.01f}}},
        {"a zero limit switches its axis off", 95, 0, 10, 15, 0, {{1000, 100, 0, 1.0f}, {1000, 0, 100, 0.05f}}},
        {"a running hold outlasts its limits", 95, 0, 0, 15, 2500, {{2000, 100, 0, 0.05f}, {2500, 100, 0, 1.0f}}},
        {"no duration ends a running hold", 95, 10, 10, 0, 5000, {{1000, 100, 0, 1.0f}}},
        {"no reduction ends a running hold", 0, 10, 10, 15, 5000, {{1000, 100, 0, 1.0f}}},
    };
    for (const auto& c : cases) {
        EngineSettings s;
        s.CrashReduction = c.reduction;
        s.CrashLongG = c.longLimit;
        s.CrashLatG = c.latLimit;
        s.CrashDurationTenths = c.durationTenths;
        int64_t hold = c.holdMs * kMs;
        for (const Step& step : c.steps) {
            TelemetryFrame frame;
            frame.longAccel = step.longAccel;
            frame.latAccel = step.latAccel;
            EXPECT_NEAR(ComputeCrashGain(frame, s, step.ms * kMs, hold), step.gain, 1e-6f)
                << c.what << " at " << step.ms;
        }
    }
}

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
