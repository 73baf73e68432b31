// The output thread's logic, pass by pass, over a scripted device and a stepped clock.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "FakeWheelDevice.h"
#include "wheel/BasicWheelOutput.h"

namespace veltor {
namespace {

using test::FakeWheelDevice;
using test::SteppedClock;
using TestWheel = BasicWheelOutput<FakeWheelDevice, SteppedClock>;

constexpr int64_t kMs = 1000000;
constexpr int32_t kInputLost = static_cast<int32_t>(0x8007001Eu);
constexpr int32_t kNotExclusive = static_cast<int32_t>(0x80040205u);

class WheelOutputTest : public ::testing::Test {
protected:
    void SetUp() override { wheel.device.clock = &wheel.clock; }

    // Open without the thread and switch output on; returns the time of the switch.
    int64_t OpenAndEnable(int32_t force) {
        EXPECT_TRUE(wheel.OpenDevice(nullptr, &guid));
        wheel.commandedForce.store(force);
        wheel.outputEnabled.store(true);
        const int64_t enabledAt = wheel.clock.now;
        wheel.RunPass();
        return enabledAt;
    }
    void RunUntil(int64_t time) {
        while (wheel.clock.now < time) wheel.RunPass();
    }
    // The magnitude after each of `passes` passes.
    std::vector<int32_t> Steps(int passes) {
        std::vector<int32_t> steps;
        for (int pass = 0; pass < passes; ++pass, steps.push_back(wheel.outputMagnitude)) wheel.RunPass();
        return steps;
    }
    // One pass in which the rim moved by `delta` over one millisecond.
    void MovedPass(int32_t delta) {
        wheel.clock.now += kMs;
        wheel.device.position += delta;
        wheel.device.signalled = true;
        wheel.RunPass();
    }

    TestWheel wheel;
    DeviceGuid guid{};
};

// The open in its order, without an effect yet; a failure at the interface, the device or Acquire leaves
// what was made for the next Close, and a later open works.
TEST_F(WheelOutputTest, Open_CallsInOrderAndFailsAtEachStage) {
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(wheel.device.calls, (std::vector<std::string>{"CreateInterface", "CreateDevice", "SetJoystickFormat",
                                               "SetCooperativeLevel", "DisableAutocenter", "SetEventNotification",
                                               "Acquire"}));
    EXPECT_FALSE(wheel.device.HasEffect());
    for (const char* stage : {"CreateInterface", "CreateDevice", "Acquire"}) {
        wheel.device.results[stage] = kInputLost;
        EXPECT_FALSE(wheel.Open(nullptr, &guid)) << stage;
        wheel.device.results[stage] = 0;
    }
    EXPECT_FALSE(wheel.OpenDevice(nullptr, nullptr));
    EXPECT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(wheel.device.Count("ReleaseDevice"), 2);  // the first open's device and the one Acquire failed on
}

// Nothing is created or sent for 1.2 s; the first pass after creates the effect, sends the ramp's first
// magnitude, starts the effect at zero and keeps the magnitude. Half way through the ramp, half the force;
// steps of 120 until the ramp ends, then of 1200.
TEST_F(WheelOutputTest, WarmUpThenRamp_NothingFor1200MillisecondsThenSlewsAt120ThenAt1200) {
    const int64_t enabledAt = OpenAndEnable(6000);
    RunUntil(enabledAt + 1200 * kMs);
    EXPECT_EQ(wheel.device.Count("CreateEffect") + wheel.device.Count("SetParameters"), 0);
    wheel.device.calls.clear();
    wheel.RunPass();
    EXPECT_EQ(wheel.device.calls,
              (std::vector<std::string>{"CreateEffect", "SetParameters", "SetParameters", "Start"}));
    EXPECT_EQ(wheel.device.sent, (std::vector<int32_t>{3, 0}));  // 6000 × 1 ms / 1800 ms, then the start at 0
    EXPECT_EQ(wheel.device.Magnitude(), 3);

    RunUntil(enabledAt + 2100 * kMs);
    EXPECT_EQ(wheel.outputMagnitude, 3000);
    wheel.commandedForce.store(-6000);
    EXPECT_EQ(Steps(2), (std::vector<int32_t>{2880, 2760}));
    RunUntil(enabledAt + 3000 * kMs);
    EXPECT_EQ(wheel.outputMagnitude, -6000);
    wheel.commandedForce.store(9996);
    EXPECT_EQ(Steps(15), (std::vector<int32_t>{-4800, -3600, -2400, -1200, 0, 1200, 2400, 3600, 4800, 6000, 7200,
                                               8400, 9600, 9996, 9996}));
    EXPECT_EQ(wheel.device.sent.back(), 9996);
    EXPECT_EQ(wheel.device.Count("Start"), 1);
}

// Force plus damping is clamped to 10000, also with wild positions and forces.
TEST_F(WheelOutputTest, Damping_ForcePlusDampingIsClampedTo10000) {
    const int64_t enabledAt = OpenAndEnable(INT32_MAX);
    wheel.lockDamping.store(true);
    RunUntil(enabledAt + 3000 * kMs);
    for (int pass = 0; pass < 20; ++pass) MovedPass(40);  // 0.04 units/µs × 150000 = 6000
    EXPECT_GT(wheel.dampingOutput, 5000);
    EXPECT_EQ(wheel.device.sent.back(), 10000);
    for (int pass = 0; pass < 20; ++pass) {
        wheel.device.position = pass % 2 == 0 ? INT32_MAX : INT32_MIN;
        MovedPass(0);
        EXPECT_LE(std::abs(wheel.outputMagnitude), 10000);
    }
}

// The scale is percent × 800, or 150000 near the lock; the term has the sign of the velocity. Without
// damping nothing is read; an unsignalled pass keeps the last term; a failed read reacquires and resets.
TEST_F(WheelOutputTest, Damping_FollowsTheRimsVelocity) {
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(wheel.ComputeDamping(true), 0);
    EXPECT_EQ(wheel.device.Count("ReadPosition"), 0);
    const auto steadyTerm = [&](int32_t percent, bool lock, int32_t step) {
        wheel.dampingPercent.store(percent);
        wheel.lockDamping.store(lock);
        int32_t term = 0;
        for (int reading = 0; reading < 12; ++reading) {
            wheel.clock.now += kMs;
            wheel.device.position += step;
            term = wheel.ComputeDamping(true);
        }
        return term;
    };
    EXPECT_NEAR(steadyTerm(50, false, 10), 400, 1);  // 0.01 units/µs
    EXPECT_NEAR(steadyTerm(0, true, 10), 1500, 1);
    EXPECT_NEAR(steadyTerm(50, true, -10), -1500, 1);
    const int32_t reads = wheel.device.Count("ReadPosition");
    wheel.device.position += 1000;
    EXPECT_NEAR(wheel.ComputeDamping(false), -1500, 1);
    EXPECT_EQ(wheel.device.Count("ReadPosition"), reads);
    wheel.device.results["ReadPosition"] = kInputLost;
    EXPECT_EQ(wheel.ComputeDamping(true), 0);
    EXPECT_EQ(wheel.lastPositionTime, 0);
    EXPECT_EQ(wheel.device.Count("Unacquire"), 1);
}

// Lost input while the force plays: the effect stops at once on each failed pass, the device is reacquired
// every 250 ms, and the first pass that gets through starts the effect again at the held magnitude.
TEST_F(WheelOutputTest, LostInput_StopsReacquiresEvery250MillisecondsAndRecovers) {
    const int64_t enabledAt = OpenAndEnable(2000);
    RunUntil(enabledAt + 3500 * kMs);
    const int32_t magnitude = wheel.outputMagnitude;
    const int32_t unacquires = wheel.device.Count("Unacquire");
    const int32_t stops = wheel.device.Count("Stop");
    wheel.device.results["SetParameters"] = kInputLost;
    const int64_t failedAt = wheel.clock.now;
    RunUntil(failedAt + 249 * kMs);
    EXPECT_EQ(wheel.device.Count("Unacquire") - unacquires, 1);
    EXPECT_GT(wheel.device.Count("Stop") - stops, 200);
    RunUntil(failedAt + 2500 * kMs);
    EXPECT_EQ(wheel.device.Count("Unacquire") - unacquires, 10);
    EXPECT_EQ(wheel.errorCount.load(), 3u);
    EXPECT_EQ(wheel.outputMagnitude, magnitude);

    wheel.device.results["SetParameters"] = 0;
    const int32_t starts = wheel.device.Count("Start");
    wheel.RunPass();
    wheel.RunPass();
    EXPECT_EQ(wheel.device.Count("Start") - starts, 1);
    EXPECT_EQ(wheel.device.sent.back(), magnitude);
}

// A failed Start is counted and recovers through one level of reacquire; a failed CreateEffect is retried
// every 50 ms without being counted.
TEST_F(WheelOutputTest, EffectFailuresRecover) {
    wheel.device.results["Start"] = kNotExclusive;
    wheel.device.results["CreateEffect"] = -1;
    const int64_t enabledAt = OpenAndEnable(1000);
    RunUntil(enabledAt + 1400 * kMs);
    EXPECT_EQ(wheel.device.Count("CreateEffect"), 4);
    EXPECT_EQ(wheel.device.Count("SetParameters"), 0);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
    wheel.device.results["CreateEffect"] = 0;
    RunUntil(wheel.clock.now + 100 * kMs);
    EXPECT_EQ(wheel.errorCount.load(), 1u);
    EXPECT_EQ(wheel.lastError.load(), kNotExclusive);
    EXPECT_FALSE(wheel.effectStarted);
    wheel.device.results["Start"] = 0;
    RunUntil(wheel.clock.now + 300 * kMs);
    EXPECT_TRUE(wheel.effectStarted);
}

// Output off stops the effect at once and clears what the engine gave; the next enable warms up again from
// zero on the same effect.
TEST_F(WheelOutputTest, OutputDisabled_StopsAtOnceAndTheNextEnableWarmsUpAgain) {
    const int64_t enabledAt = OpenAndEnable(5000);
    wheel.dampingPercent.store(30);
    wheel.lockDamping.store(true);
    RunUntil(enabledAt + 2000 * kMs);
    ASSERT_GT(wheel.outputMagnitude, 0);
    wheel.device.calls.clear();
    wheel.device.sent.clear();
    wheel.outputEnabled.store(false);
    wheel.RunPass();
    EXPECT_EQ(wheel.device.calls, std::vector<std::string>{"Stop"});
    EXPECT_EQ(wheel.device.Magnitude(), 0);
    EXPECT_EQ(wheel.commandedForce.load() + wheel.dampingPercent.load(), 0);
    EXPECT_FALSE(wheel.lockDamping.load());

    wheel.commandedForce.store(5000);
    wheel.outputEnabled.store(true);
    RunUntil(wheel.clock.now + 1200 * kMs);
    EXPECT_TRUE(wheel.device.sent.empty());
    wheel.RunPass();
    EXPECT_EQ(wheel.device.sent.front(), 2);  // 5000 × 1/1800, from 0
    EXPECT_EQ(wheel.device.Count("CreateEffect"), 0);
}

}  // namespace
}  // namespace veltor
