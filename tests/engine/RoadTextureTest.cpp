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

}  // namespace
}  // namespace veltor
