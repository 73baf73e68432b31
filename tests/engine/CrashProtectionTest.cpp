#include <gtest/gtest.h>

#include <vector>

#include "engine/CrashProtection.h"

namespace veltor {
namespace {

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

}  // namespace
}  // namespace veltor
