#include <gtest/gtest.h>

#include "engine/CrashProtection.h"

namespace veltor {
namespace {

constexpr int64_t kSecond = 1000000000LL;
constexpr float kOneG = 9.80665f;

TelemetryFrame Accel(float longAccel, float latAccel) {
    TelemetryFrame frame;
    frame.longAccel = longAccel;
    frame.latAccel = latAccel;
    return frame;
}

EngineSettings OneG() {
    EngineSettings s;  // 1.5 s, 95 percent
    s.CrashLongG = 10;
    s.CrashLatG = 10;
    return s;
}

TEST(ComputeCrashGain, AHitAtTheLimitHoldsTheForceDownForTheDuration) {
    int64_t hold = 0;
    const EngineSettings s = OneG();
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(0.0f, -kOneG), s, 10 * kSecond, hold), 1.0f - 0.95f);
    EXPECT_EQ(hold, 10 * kSecond + 3 * kSecond / 2);
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(0.0f, 0.0f), s, 11 * kSecond, hold), 1.0f - 0.95f);
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(0.0f, 0.0f), s, 11 * kSecond + kSecond / 2 - 1, hold), 1.0f - 0.95f);
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(0.0f, 0.0f), s, 11 * kSecond + kSecond / 2, hold), 1.0f);
}

TEST(ComputeCrashGain, JustBelowTheLimitIsNoHit) {
    int64_t hold = 0;
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(9.8f, -9.8f), OneG(), kSecond, hold), 1.0f);
    EXPECT_EQ(hold, 0);
}

TEST(ComputeCrashGain, EachHitStartsTheHoldAnew) {
    int64_t hold = 0;
    const EngineSettings s = OneG();
    ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond, hold);
    ComputeCrashGain(Accel(-20.0f, 0.0f), s, 2 * kSecond, hold);
    EXPECT_EQ(hold, 2 * kSecond + 3 * kSecond / 2);
    EXPECT_LT(ComputeCrashGain(Accel(0.0f, 0.0f), s, 3 * kSecond, hold), 0.1f);
}

TEST(ComputeCrashGain, ReductionIsLimitedSoTheGainNeverFallsBelowOnePercent) {
    EngineSettings s = OneG();
    s.CrashReduction = 99;
    int64_t hold = 0;
    EXPECT_NEAR(ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond, hold), 0.01f, 1e-6f);
    s.CrashReduction = 250;
    EXPECT_NEAR(ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond, hold), 0.01f, 1e-6f);
}

TEST(ComputeCrashGain, ZeroDurationOrReductionEndsARunningHoldAtOnce) {
    EngineSettings s = OneG();
    int64_t hold = 0;
    ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond, hold);
    s.CrashReduction = 0;
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond + 1, hold), 1.0f);
    s.CrashReduction = 95;
    s.CrashDurationTenths = 0;
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(20.0f, 0.0f), s, kSecond + 2, hold), 1.0f);
}

TEST(ComputeCrashGain, AZeroLimitSwitchesItsAxisOffButARunningHoldGoesOn) {
    EngineSettings s = OneG();
    s.CrashLongG = 0;
    int64_t hold = 0;
    EXPECT_FLOAT_EQ(ComputeCrashGain(Accel(100.0f, 0.0f), s, kSecond, hold), 1.0f);
    EXPECT_LT(ComputeCrashGain(Accel(0.0f, 100.0f), s, kSecond, hold), 1.0f);
    s.CrashLatG = 0;
    EXPECT_LT(ComputeCrashGain(Accel(100.0f, 100.0f), s, 2 * kSecond, hold), 1.0f);
    EXPECT_EQ(hold, kSecond + 3 * kSecond / 2);  // not moved on by the second call
}

}  // namespace
}  // namespace veltor
