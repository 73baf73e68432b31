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
// what was made for the next Close, and a later open works. Closing a wheel never opened touches no device.
TEST_F(WheelOutputTest, Open_CallsInOrderAndFailsAtEachStage) {
    wheel.commandedForce.store(500);
    wheel.Close();
    EXPECT_EQ(wheel.commandedForce.load(), 0);
    EXPECT_TRUE(wheel.device.calls.empty());
    ASSERT_TRUE(wheel.OpenDevice(nullptr, &guid));
    std::vector<std::string> names;
    for (const auto& call : wheel.device.calls) names.push_back(call.name);
    EXPECT_EQ(names, (std::vector<std::string>{"CreateInterface", "CreateDevice", "SetJoystickFormat",
                                               "SetCooperativeLevel", "DisableAutocenter", "SetEventNotification",
                                               "Acquire"}));
    EXPECT_FALSE(wheel.device.HasEffect());
    for (int32_t FakeWheelDevice::*result : {&FakeWheelDevice::createInterfaceResult,
                                             &FakeWheelDevice::createDeviceResult, &FakeWheelDevice::acquireResult}) {
        wheel.device.*result = kInputLost;
        EXPECT_FALSE(wheel.Open(nullptr, &guid));
        wheel.device.*result = 0;
    }
    EXPECT_FALSE(wheel.OpenDevice(nullptr, nullptr));
    EXPECT_TRUE(wheel.OpenDevice(nullptr, &guid));
    EXPECT_EQ(wheel.device.Count("ReleaseDevice"), 2);  // the first open's device and the one Acquire failed on
}

// Nothing is created or sent for 1.2 s; the first pass after creates the effect, sends the ramp's first
// magnitude, starts the effect at zero and keeps the magnitude.
TEST_F(WheelOutputTest, WarmUp_NothingFor1200MillisecondsThenTheEffectStartsAtZero) {
    const int64_t enabledAt = OpenAndEnable(6000);
    RunUntil(enabledAt + 1200 * kMs);
    EXPECT_EQ(wheel.device.Count("CreateEffect"), 0);
    EXPECT_EQ(wheel.device.Count("SetParameters"), 0);
    const size_t before = wheel.device.calls.size();
    wheel.RunPass();
    const auto& calls = wheel.device.calls;
    ASSERT_EQ(calls.size(), before + 4);
    EXPECT_EQ(calls[before].name, "CreateEffect");
    EXPECT_EQ(calls[before + 1].name, "SetParameters");
    EXPECT_EQ(calls[before + 1].magnitude, 3);  // 6000 × 1 ms / 1800 ms
    EXPECT_EQ(calls[before + 2].name, "SetParameters");
    EXPECT_EQ(calls[before + 2].magnitude, 0);
    EXPECT_EQ(calls[before + 3].name, "Start");
    EXPECT_EQ(wheel.device.Magnitude(), 3);
    wheel.RunPass();
    EXPECT_EQ(wheel.device.Count("Start"), 1);
}

// Half way through the ramp, half the force; steps of 120 until the ramp ends, then of 1200.
TEST_F(WheelOutputTest, Ramp_FollowsElapsedOver1800AndSlewsAt120ThenAt1200) {
    const int64_t enabledAt = OpenAndEnable(6000);
    RunUntil(enabledAt + 2100 * kMs);
    EXPECT_EQ(wheel.outputMagnitude, 3000);
    wheel.commandedForce.store(-6000);
    std::vector<int32_t> steps;
    for (int pass = 0; pass < 3; ++pass, wheel.RunPass()) steps.push_back(wheel.outputMagnitude);
    EXPECT_EQ(steps, (std::vector<int32_t>{3000, 2880, 2760}));
    RunUntil(enabledAt + 3000 * kMs);
    EXPECT_EQ(wheel.outputMagnitude, -6000);
    wheel.commandedForce.store(9996);
    steps.clear();
    for (int pass = 0; pass < 15; ++pass, steps.push_back(wheel.outputMagnitude)) wheel.RunPass();
    EXPECT_EQ(steps, (std::vector<int32_t>{-4800, -3600, -2400, -1200, 0, 1200, 2400, 3600, 4800, 6000, 7200, 8400,
                                           9600, 9996, 9996}));
    EXPECT_EQ(wheel.device.SentMagnitudes().back(), 9996);
}

// Force plus damping is clamped to 10000, also with wild positions and forces.
TEST_F(WheelOutputTest, Damping_ForcePlusDampingIsClampedTo10000) {
    const int64_t enabledAt = OpenAndEnable(INT32_MAX);
    wheel.lockDamping.store(true);
    RunUntil(enabledAt + 3000 * kMs);
    for (int pass = 0; pass < 20; ++pass) MovedPass(40);  // 0.04 units/µs × 150000 = 6000
    EXPECT_GT(wheel.dampingOutput, 5000);
    EXPECT_EQ(wheel.device.SentMagnitudes().back(), 10000);
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
    wheel.device.readResult = kInputLost;
    EXPECT_EQ(wheel.ComputeDamping(true), 0);
    EXPECT_EQ(wheel.lastPositionTime, 0);
    EXPECT_EQ(wheel.device.Count("Unacquire"), 1);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

TEST_F(WheelOutputTest, RecordError_RepeatsCountOnceASecondAndChangesAlways) {
    for (int i = 0; i < 100; ++i) {
        wheel.RecordError(kInputLost);
        wheel.clock.now += 5 * kMs;
    }
    EXPECT_EQ(wheel.errorCount.load(), 1u);
    wheel.clock.now += 500 * kMs;
    wheel.RecordError(kInputLost);
    EXPECT_EQ(wheel.errorCount.load(), 2u);
    for (int i = 0; i < 10; ++i) wheel.RecordError(i % 2 == 0 ? kNotExclusive : kInputLost);
    EXPECT_EQ(wheel.errorCount.load(), 12u);
    EXPECT_EQ(wheel.lastError.load(), kInputLost);
}

TEST_F(WheelOutputTest, SetParametersFailing_CountsOncePerSecondReacquiresEvery250AndRecovers) {
    const int64_t enabledAt = OpenAndEnable(2000);
    RunUntil(enabledAt + 3500 * kMs);
    const int32_t magnitude = wheel.outputMagnitude;
    const int32_t unacquiresBefore = wheel.device.Count("Unacquire");
    const int32_t stopsBefore = wheel.device.Count("Stop");
    wheel.device.setParametersResult = kInputLost;
    const int64_t failedAt = wheel.clock.now;
    wheel.RunPass();
    EXPECT_EQ(wheel.device.Count("Unacquire") - unacquiresBefore, 1);
    RunUntil(failedAt + 249 * kMs);
    EXPECT_EQ(wheel.device.Count("Unacquire") - unacquiresBefore, 1);  // stopped each pass, reacquired once
    EXPECT_GT(wheel.device.Count("Stop") - stopsBefore, 200);
    RunUntil(failedAt + 2500 * kMs);
    EXPECT_EQ(wheel.device.Count("Unacquire") - unacquiresBefore, 10);
    EXPECT_EQ(wheel.errorCount.load(), 3u);
    EXPECT_EQ(wheel.lastError.load(), kInputLost);
    EXPECT_EQ(wheel.outputMagnitude, magnitude);

    wheel.device.setParametersResult = 0;
    const int32_t startsBefore = wheel.device.Count("Start");
    wheel.RunPass();
    wheel.RunPass();
    EXPECT_EQ(wheel.device.Count("Start") - startsBefore, 1);
    EXPECT_EQ(wheel.device.SentMagnitudes().back(), magnitude);
}

// A failed Start is counted and recovers through one level of reacquire; a failed CreateEffect is retried
// every 50 ms without being counted.
TEST_F(WheelOutputTest, EffectFailuresRecover) {
    wheel.device.startResult = kNotExclusive;
    wheel.device.createEffectResult = -1;
    const int64_t enabledAt = OpenAndEnable(1000);
    RunUntil(enabledAt + 1200 * kMs + 200 * kMs);
    EXPECT_EQ(wheel.device.Count("CreateEffect"), 4);
    EXPECT_EQ(wheel.device.Count("SetParameters"), 0);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
    wheel.device.createEffectResult = 0;
    RunUntil(wheel.clock.now + 100 * kMs);
    EXPECT_EQ(wheel.errorCount.load(), 1u);
    EXPECT_EQ(wheel.lastError.load(), kNotExclusive);
    EXPECT_FALSE(wheel.effectStarted);
    wheel.device.startResult = 0;
    RunUntil(wheel.clock.now + 300 * kMs);
    EXPECT_TRUE(wheel.effectStarted);
}

TEST_F(WheelOutputTest, OutputDisabledMidRamp_StopsAtOnceAndTheNextEnableWarmsUpAgain) {
    const int64_t enabledAt = OpenAndEnable(5000);
    wheel.dampingPercent.store(30);
    wheel.lockDamping.store(true);
    RunUntil(enabledAt + 2000 * kMs);
    ASSERT_GT(wheel.outputMagnitude, 0);
    const int32_t stops = wheel.device.Count("Stop");
    const int32_t sent = wheel.device.Count("SetParameters");
    wheel.outputEnabled.store(false);
    wheel.RunPass();
    EXPECT_EQ(wheel.device.Count("Stop"), stops + 1);
    EXPECT_EQ(wheel.device.Magnitude(), 0);
    EXPECT_EQ(wheel.outputMagnitude, 0);
    EXPECT_EQ(wheel.commandedForce.load(), 0);
    EXPECT_EQ(wheel.dampingPercent.load(), 0);
    EXPECT_FALSE(wheel.lockDamping.load());
    RunUntil(wheel.clock.now + 500 * kMs);
    EXPECT_EQ(wheel.device.Count("SetParameters"), sent);

    wheel.commandedForce.store(5000);
    wheel.outputEnabled.store(true);
    const int64_t reenabledAt = wheel.clock.now;
    RunUntil(reenabledAt + 1200 * kMs);
    EXPECT_EQ(wheel.device.Count("SetParameters"), sent);
    wheel.RunPass();
    EXPECT_EQ(wheel.device.SentMagnitudes()[static_cast<size_t>(sent)], 2);  // 5000 × 1/1800, from 0
    EXPECT_EQ(wheel.device.Count("CreateEffect"), 1);  // the effect outlives idle
}

TEST_F(WheelOutputTest, WithoutDeviceEvent_PassesSleepOneMillisecond) {
    wheel.device.withEvent = false;
    const int64_t enabledAt = OpenAndEnable(1000);
    RunUntil(enabledAt + 1200 * kMs);
    const int64_t start = wheel.clock.now;
    wheel.RunPass();
    EXPECT_EQ(wheel.clock.now - start, kMs);
    EXPECT_EQ(wheel.device.Count("SetEventNotification"), 0);
}

}  // namespace
}  // namespace veltor
