#include <gtest/gtest.h>

#include <vector>

#include "engine/RoadTexture.h"

namespace veltor {
namespace {

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

}  // namespace
}  // namespace veltor
