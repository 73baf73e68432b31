#include <gtest/gtest.h>

#include <cmath>

#include "engine/RoadTexture.h"

namespace veltor {
namespace {

EngineSettings Sliders(int32_t bumps, int32_t impacts) {
    EngineSettings s;
    s.Bumps = bumps;
    s.BumpImpacts = impacts;
    return s;
}

TEST(ComputeTexture, DefaultSlidersGiveSixHundredFortyNewtonMetresPerMetre) {
    const EngineSettings s;
    EXPECT_NEAR(ComputeTexture(0.001f, s), 0.64f, 1e-6f);
    EXPECT_NEAR(ComputeTexture(-0.02f, s), -12.8f, 1e-5f);
    EXPECT_EQ(ComputeTexture(0.0f, s), 0.0f);
}

TEST(ComputeTexture, SplitsRoadAndImpactEquallyAtTheCrossover) {
    EXPECT_NEAR(ComputeTexture(0.0035f, Sliders(20, 0)), 1.12f, 1e-6f);  // w = 0.5
    EXPECT_NEAR(ComputeTexture(0.0035f, Sliders(0, 20)), 1.12f, 1e-6f);
    EXPECT_NEAR(ComputeTexture(0.0035f, Sliders(10, 30)), 0.5f * 0.0035f * (160.0f + 1440.0f), 1e-5f);
}

TEST(ComputeTexture, ImpactsAloneIgnoreSmallMovementsAndPassLargeOnes) {
    const EngineSettings s = Sliders(0, 20);
    EXPECT_LT(std::fabs(ComputeTexture(0.0001f, s)), 1e-4f);  // 0.064 with the road part
    EXPECT_NEAR(ComputeTexture(-0.1f, s), -64.0f * 0.99878f, 0.01f);
    EXPECT_EQ(ComputeTexture(0.01f, Sliders(-5, 0)), 0.0f);
}

TelemetryFrame ShockFrame(float speed, int count, const float* left, const float* right) {
    TelemetryFrame frame;
    frame.valid = 1;
    frame.speed = speed;
    frame.shockSampleCount = count;
    for (int i = 0; i < count; ++i) {
        frame.lfShockDeflSamples[i] = left[i];
        frame.rfShockDeflSamples[i] = right[i];
    }
    frame.lfShockDefl = left[count - 1];
    frame.rfShockDefl = right[count - 1];
    return frame;
}

TelemetryFrame Previous(float left, float right, float centre = 0.0f) {
    TelemetryFrame frame;
    frame.valid = 1;
    frame.lfShockDefl = left;
    frame.rfShockDefl = right;
    frame.cfShockDefl = centre;
    return frame;
}

constexpr float kRising[6] = {0.001f, 0.002f, 0.003f, 0.004f, 0.005f, 0.006f};
constexpr float kFlat[6] = {};

TEST(SubSampleTexture, FollowsTheDifferenceOfLeftAndRightMovement) {
    const TelemetryFrame frame = ShockFrame(20.0f, 6, kRising, kFlat);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0), i, EngineSettings{}), 0.64f, 1e-4f);
    const TelemetryFrame mirrored = ShockFrame(20.0f, 6, kFlat, kRising);
    EXPECT_NEAR(SubSampleTexture(mirrored, Previous(0, 0), 2, EngineSettings{}), -0.64f, 1e-4f);
    // Both corners lifted alike cancel out.
    const TelemetryFrame both = ShockFrame(20.0f, 6, kRising, kRising);
    EXPECT_EQ(SubSampleTexture(both, Previous(0, 0), 3, EngineSettings{}), 0.0f);
}

TEST(SubSampleTexture, FirstSampleComparesWithThePreviousFramesNewest) {
    const TelemetryFrame frame = ShockFrame(20.0f, 6, kRising, kFlat);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(-0.002f, 0.0f), 0, EngineSettings{}), 1.92f, 1e-4f);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(-0.002f, 0.0f), 1, EngineSettings{}), 0.64f, 1e-4f);
}

TEST(SubSampleTexture, SamplesBeyondTheShockCountRepeatTheLastMovement) {
    const float left[2] = {0.001f, 0.004f};
    const TelemetryFrame frame = ShockFrame(20.0f, 2, left, kFlat);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0), 1, EngineSettings{}), 1.92f, 1e-4f);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0), 5, EngineSettings{}), 1.92f, 1e-4f);
}

TEST(SubSampleTexture, IsZeroWithoutAValidPreviousFrameOrAtWalkingSpeed) {
    const TelemetryFrame frame = ShockFrame(20.0f, 6, kRising, kFlat);
    EXPECT_EQ(SubSampleTexture(frame, TelemetryFrame{}, 0, EngineSettings{}), 0.0f);
    EXPECT_EQ(SubSampleTexture(ShockFrame(2.0f, 6, kRising, kFlat), Previous(0, 0), 0, EngineSettings{}), 0.0f);
    EXPECT_EQ(SubSampleTexture(ShockFrame(-20.0f, 6, kRising, kFlat), Previous(0, 0), 0, EngineSettings{}), 0.0f);
    EXPECT_EQ(SubSampleTexture(frame, Previous(0, 0), 0, Sliders(0, 0)), 0.0f);
    EXPECT_GT(SubSampleTexture(frame, Previous(0, 0), 0, Sliders(0, 20)), 0.0f);
}

TEST(SubSampleTexture, FallsBackOnTheCentreShockAndIsZeroWithNoShocks) {
    TelemetryFrame frame;
    frame.valid = 1;
    frame.speed = 20.0f;
    EXPECT_EQ(SubSampleTexture(frame, Previous(0, 0), 0, EngineSettings{}), 0.0f);
    frame.cfShockSampleCount = 3;
    frame.cfShockDeflSamples[0] = 0.001f;
    frame.cfShockDeflSamples[1] = 0.003f;
    frame.cfShockDeflSamples[2] = 0.002f;
    EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0, 0.002f), 0, EngineSettings{}), -0.64f, 1e-4f);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0), 1, EngineSettings{}), 1.28f, 1e-4f);
    EXPECT_NEAR(SubSampleTexture(frame, Previous(0, 0), 4, EngineSettings{}), -0.64f, 1e-4f);
}

TelemetryFrame AbsFrame(bool active) {
    TelemetryFrame frame;
    frame.brakeAbsActive = active ? 1 : 0;
    return frame;
}

// A 35 Hz sine of 3 Nm by default, filling only the tick's outputs, continued across ticks below 2 pi.
TEST(FillAbsVibration, ThirtyFiveHertzSineContinuesAcrossTicksAndWrapsBelowTwoPi) {
    float phase = 0.0f;
    float vibration[12] = {};
    double expected = 0.0;
    const double step = 219.9115f / 360.0f;
    for (int tick = 0; tick < 20; ++tick) {
        FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, vibration);
        for (int i = 0; i < 6; ++i) {
            ASSERT_NEAR(vibration[i], 3.0 * std::sin(expected), tick == 0 ? 1e-5 : 2e-4) << tick << " " << i;
            expected += step;
        }
        ASSERT_EQ(vibration[6], 0.0f);
        if (tick == 0) {
            ASSERT_NEAR(phase, 6 * step, 1e-5);
        }
        ASSERT_GE(phase, 0.0f);
        ASSERT_LT(phase, 6.2831855f);
    }
}

TEST(FillAbsVibration, InterpolatedModeStepsAtHalfTheAngle) {
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, true, 12, phase, vibration);
    const double step = 219.9115 / 720.0;
    for (int i = 0; i < 12; ++i) EXPECT_NEAR(vibration[i], 3.0 * std::sin(i * step), 1e-5) << i;
}

TEST(FillAbsVibration, RestartsFromPhaseZeroWhenAbsGoesOffAndOn) {
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, vibration);
    float off[12] = {};
    FillAbsVibration(AbsFrame(false), EngineSettings{}, false, 6, phase, off);
    EXPECT_EQ(phase, 0.0f);
    for (const float v : off) EXPECT_EQ(v, 0.0f);
    float again[12] = {};
    FillAbsVibration(AbsFrame(true), EngineSettings{}, false, 6, phase, again);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(again[i], vibration[i]);
}

TEST(FillAbsVibration, AmplitudeIsCappedAtTwentyAndOffAtZero) {
    EngineSettings s;
    s.AbsVibration = 150;
    float phase = 0.0f;
    float vibration[12] = {};
    FillAbsVibration(AbsFrame(true), s, false, 6, phase, vibration);
    EXPECT_NEAR(vibration[3], 20.0 * std::sin(3 * 219.9115 / 360.0), 1e-4);
    s.AbsVibration = 0;
    float none[12] = {};
    FillAbsVibration(AbsFrame(true), s, false, 6, phase, none);
    EXPECT_EQ(none[3], 0.0f);
    EXPECT_EQ(phase, 0.0f);
}

EngineSettings Priority(int32_t priority, int32_t strength = 50) {
    EngineSettings s;
    s.SuspensionDetailPriority = priority;
    s.ForceStrength = strength;
    return s;
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
        bool acted = c.acted == 0;
        EXPECT_NEAR(MixForce(Priority(c.priority, c.strength), c.main, c.resistance, c.texture, c.other, &acted),
                    c.mixed, 1e-5f);
        if (c.acted >= 0) {
            EXPECT_EQ(acted, c.acted == 1);
        }
    }
}

}  // namespace
}  // namespace veltor
