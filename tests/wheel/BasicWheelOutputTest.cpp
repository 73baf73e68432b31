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
    void SetUp() override { device.clock = &clock; }

    // Open without the thread and switch output on; returns the time of the switch.
    int64_t OpenAndEnable(int32_t force) {
        EXPECT_TRUE(wheel.OpenDevice(nullptr, &guid));
        wheel.commandedForce.store(force);
        wheel.outputEnabled.store(true);
        const int64_t enabledAt = clock.now;
        wheel.RunPass();
        return enabledAt;
    }
    void RunUntil(int64_t time) {
        while (clock.now < time) wheel.RunPass();
    }
    // The magnitude the effect holds after each of `passes` passes.
    std::vector<int32_t> Steps(int passes) {
        std::vector<int32_t> steps;
        for (int pass = 0; pass < passes; ++pass, steps.push_back(device.Magnitude())) wheel.RunPass();
        return steps;
    }
    // One pass (a millisecond on the stepped clock) in which the rim moved by `delta`.
    int32_t MovedPass(int32_t delta) {
        device.position += delta;
        device.signalled = true;
        wheel.RunPass();
        return device.sent.back();
    }

    TestWheel wheel;
    FakeWheelDevice& device = wheel.PlatformDevice();
    SteppedClock& clock = wheel.PlatformClock();
    DeviceGuid guid{};
};

// The open in its order, without an effect yet; a failure at the interface, the device or Acquire leaves
// what was made for the next Close, and a later open works.
TEST_F(WheelOutputTest, Open_CallsInOrderAndFailsAtEachStage) {
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(device.calls, (std::vector<std::string>{"CreateInterface", "CreateDevice", "SetJoystickFormat",
                                                      "SetCooperativeLevel", "DisableAutocenter",
                                                      "SetEventNotification", "Acquire"}));
    EXPECT_FALSE(device.HasEffect());
    for (const char* stage : {"CreateInterface", "CreateDevice", "Acquire"}) {
        device.results[stage] = kInputLost;
        EXPECT_FALSE(wheel.Open(nullptr, &guid)) << stage;
        device.results[stage] = 0;
    }
    EXPECT_FALSE(wheel.OpenDevice(nullptr, nullptr));
    EXPECT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(device.Count("ReleaseDevice"), 2);  // the first open's device and the one Acquire failed on
}

// Nothing is created or sent for 1.2 s; the first pass after creates the effect, sends the ramp's first
// magnitude, starts the effect at zero and keeps the magnitude. Half way through the ramp, half the force;
// steps of 120 until the ramp ends, then of 1200.
TEST_F(WheelOutputTest, WarmUpThenRamp_NothingFor1200MillisecondsThenSlewsAt120ThenAt1200) {
    const int64_t enabledAt = OpenAndEnable(6000);
    RunUntil(enabledAt + 1200 * kMs);
    EXPECT_EQ(device.Count("CreateEffect") + device.Count("SetParameters"), 0);
    device.calls.clear();
    wheel.RunPass();
    EXPECT_EQ(device.calls, (std::vector<std::string>{"CreateEffect", "SetParameters", "SetParameters", "Start"}));
    EXPECT_EQ(device.sent, (std::vector<int32_t>{3, 0}));  // 6000 × 1 ms / 1800 ms, then the start at 0
    EXPECT_EQ(device.Magnitude(), 3);

    RunUntil(enabledAt + 2100 * kMs);
    EXPECT_EQ(device.Magnitude(), 3000);
    wheel.commandedForce.store(-6000);
    EXPECT_EQ(Steps(2), (std::vector<int32_t>{2880, 2760}));
    RunUntil(enabledAt + 3000 * kMs);
    EXPECT_EQ(device.Magnitude(), -6000);
    wheel.commandedForce.store(9996);
    EXPECT_EQ(Steps(15), (std::vector<int32_t>{-4800, -3600, -2400, -1200, 0, 1200, 2400, 3600, 4800, 6000, 7200,
                                               8400, 9600, 9996, 9996}));
    EXPECT_EQ(device.sent.back(), 9996);
    EXPECT_EQ(device.Count("Start"), 1);
}

// The damping term follows the rim's velocity, in its sign: percent × 800, or 150000 near the lock, per
// axis unit a microsecond. A pass without a new position keeps the term and reads nothing; a failed read
// reacquires and drops the term. Force plus damping is clamped to 10000, also with wild positions.
TEST_F(WheelOutputTest, Damping_FollowsTheRimsVelocityAndIsClamped) {
    const int64_t enabledAt = OpenAndEnable(0);
    RunUntil(enabledAt + 3000 * kMs);  // past the ramp
    EXPECT_EQ(device.Count("ReadPosition"), 0) << "no damping, no reading";
    const auto steadyTerm = [&](int32_t percent, bool lock, int32_t step) {
        wheel.dampingPercent.store(percent);
        wheel.lockDamping.store(lock);
        int32_t sent = 0;
        for (int reading = 0; reading < 12; ++reading) sent = MovedPass(step);
        return sent;
    };
    EXPECT_NEAR(steadyTerm(50, false, 10), 400, 1);  // 0.01 units/µs
    EXPECT_NEAR(steadyTerm(0, true, 10), 1500, 1);
    EXPECT_NEAR(steadyTerm(50, true, -10), -1500, 1);
    const int32_t reads = device.Count("ReadPosition");
    device.position += 1000;
    wheel.RunPass();
    EXPECT_NEAR(device.sent.back(), -1500, 1);
    EXPECT_EQ(device.Count("ReadPosition"), reads);
    device.results["ReadPosition"] = kInputLost;
    device.signalled = true;
    wheel.RunPass();
    EXPECT_EQ(device.Count("Unacquire"), 1);
    device.results["ReadPosition"] = 0;
    EXPECT_EQ(Steps(3).back(), 0) << "the term is gone";

    wheel.commandedForce.store(INT32_MAX);
    EXPECT_EQ(steadyTerm(0, true, 40), 10000);  // 0.04 units/µs × 150000 = 6000 on top
    for (int pass = 0; pass < 20; ++pass) {
        device.position = pass % 2 == 0 ? INT32_MAX : INT32_MIN;
        EXPECT_LE(std::abs(MovedPass(0)), 10000);
    }
}

// Lost input while the force plays: the effect stops at once on each failed pass, the device is reacquired
// every 250 ms, and the first pass that gets through starts the effect again at the held magnitude.
TEST_F(WheelOutputTest, LostInput_StopsReacquiresEvery250MillisecondsAndRecovers) {
    const int64_t enabledAt = OpenAndEnable(2000);
    RunUntil(enabledAt + 3500 * kMs);
    const int32_t magnitude = device.sent.back();
    const int32_t unacquires = device.Count("Unacquire");
    const int32_t stops = device.Count("Stop");
    device.results["SetParameters"] = kInputLost;
    const int64_t failedAt = clock.now;
    RunUntil(failedAt + 249 * kMs);
    EXPECT_EQ(device.Count("Unacquire") - unacquires, 1);
    EXPECT_GT(device.Count("Stop") - stops, 200);
    RunUntil(failedAt + 2500 * kMs);
    EXPECT_EQ(device.Count("Unacquire") - unacquires, 10);
    EXPECT_EQ(wheel.errorCount.load(), 3u);

    device.results["SetParameters"] = 0;
    const int32_t starts = device.Count("Start");
    wheel.RunPass();
    wheel.RunPass();
    EXPECT_EQ(device.Count("Start") - starts, 1);
    EXPECT_EQ(device.sent.back(), magnitude);
}

// A failed Start is counted and recovers through one level of reacquire; a failed CreateEffect is retried
// every 50 ms without being counted. Once started, the effect is not started again.
TEST_F(WheelOutputTest, EffectFailuresRecover) {
    device.results["Start"] = kNotExclusive;
    device.results["CreateEffect"] = -1;
    const int64_t enabledAt = OpenAndEnable(1000);
    RunUntil(enabledAt + 1400 * kMs);
    EXPECT_EQ(device.Count("CreateEffect"), 4);
    EXPECT_EQ(device.Count("SetParameters"), 0);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
    device.results["CreateEffect"] = 0;
    RunUntil(clock.now + 100 * kMs);
    EXPECT_EQ(wheel.errorCount.load(), 1u);
    EXPECT_EQ(wheel.lastError.load(), kNotExclusive);
    device.results["Start"] = 0;
    RunUntil(clock.now + 300 * kMs);
    const int32_t starts = device.Count("Start");
    RunUntil(clock.now + 100 * kMs);
    EXPECT_EQ(device.Count("Start"), starts);
}

// Output off stops the effect at once and clears what the engine gave; the next enable warms up again from
// zero on the same effect.
TEST_F(WheelOutputTest, OutputDisabled_StopsAtOnceAndTheNextEnableWarmsUpAgain) {
    const int64_t enabledAt = OpenAndEnable(5000);
    wheel.dampingPercent.store(30);
    wheel.lockDamping.store(true);
    RunUntil(enabledAt + 2000 * kMs);
    ASSERT_GT(device.Magnitude(), 0);
    device.calls.clear();
    device.sent.clear();
    wheel.outputEnabled.store(false);
    wheel.RunPass();
    EXPECT_EQ(device.calls, std::vector<std::string>{"Stop"});
    EXPECT_EQ(device.Magnitude(), 0);
    EXPECT_EQ(wheel.commandedForce.load() + wheel.dampingPercent.load(), 0);
    EXPECT_FALSE(wheel.lockDamping.load());

    wheel.commandedForce.store(5000);
    wheel.outputEnabled.store(true);
    RunUntil(clock.now + 1200 * kMs);
    EXPECT_TRUE(device.sent.empty());
    wheel.RunPass();
    EXPECT_EQ(device.sent.front(), 2);  // 5000 × 1/1800, from 0
    EXPECT_EQ(device.Count("CreateEffect"), 0);
}

}  // namespace
}  // namespace veltor
