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

// Limits of 1 g on both axes, 1.5 s and 95 percent unless the case says otherwise. A hit at or above a
// limit holds the gain down until one duration after the last hit; a limit of 0 switches its axis off.
TEST(ComputeCrashGain, HoldsTheForceDownForTheDurationAfterTheLastHit) {
    const struct {
        const char* what;
        int32_t reduction, longLimit, latLimit;
        std::vector<Step> steps;
    } cases[] = {
        {"a hit at the limit", 95, 10, 10, {{1000, 0, -kOneG, 0.05f}, {2499, 0, 0, 0.05f}, {2500, 0, 0, 1.0f}}},
        {"just below the limit", 95, 10, 10, {{1000, 9.8f, -9.8f, 1.0f}}},
        {"each hit starts the hold anew", 95, 10, 10, {{1000, 20, 0, 0.05f}, {2000, -20, 0, 0.05f}, {3499, 0, 0, 0.05f},
                                                        {3500, 0, 0, 1.0f}}},
        {"the gain never falls below 0.01", 250, 10, 10, {{1000, 20, 0, 0.01f}}},
        {"a zero limit switches its axis off", 95, 0, 10, {{1000, 100, 0, 1.0f}, {1000, 0, 100, 0.05f}}},
    };
    for (const auto& c : cases) {
        EngineSettings s;
        s.CrashReduction = c.reduction;
        s.CrashLongG = c.longLimit;
        s.CrashLatG = c.latLimit;
        int64_t hold = 0;
        for (const Step& step : c.steps) {
            TelemetryFrame frame;
            frame.longAccel = step.longAccel;
            frame.latAccel = step.latAccel;
            EXPECT_NEAR(ComputeCrashGain(frame, s, step.ms * kMs, hold), step.gain, 1e-6f) << c.what << " at " << step.ms;
        }
    }
    EngineSettings s;
    int64_t hold = 2500 * kMs;  // a hold in force, with both limits now off
    s.CrashLongG = s.CrashLatG = 0;
    TelemetryFrame hit;
    hit.longAccel = 100.0f;
    EXPECT_NEAR(ComputeCrashGain(hit, s, 2000 * kMs, hold), 0.05f, 1e-6f);
    EXPECT_EQ(hold, 2500 * kMs);
}

TEST(ComputeCrashGain, ZeroDurationOrReductionEndsARunningHoldAtOnce) {
    TelemetryFrame hit;
    hit.longAccel = 100.0f;
    for (const auto& [reduction, tenths] : {std::pair{0, 15}, std::pair{95, 0}}) {
        EngineSettings s;
        s.CrashReduction = reduction;
        s.CrashDurationTenths = tenths;
        int64_t hold = 5000 * kMs;
        EXPECT_EQ(ComputeCrashGain(hit, s, 1000 * kMs, hold), 1.0f);
    }
}

}  // namespace
}  // namespace veltor
