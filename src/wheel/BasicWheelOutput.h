#pragma once
#include <algorithm>
#include <atomic>
#include <concepts>
#include <cstdint>
#include <system_error>
#include <thread>

#include "platform/ThreadControl.h"
#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"
#include "wheel/SmoothingWeights.h"

namespace veltor {

constexpr int64_t kNanosecondsPerMillisecond = 1000000;
constexpr int64_t kIdlePollNanoseconds = 5 * kNanosecondsPerMillisecond;
constexpr int64_t kWarmupNanoseconds = 1200 * kNanosecondsPerMillisecond;
constexpr int64_t kRampEndNanoseconds = 3000 * kNanosecondsPerMillisecond;
constexpr float kRampMilliseconds = 1800.0f;
constexpr int32_t kRampSlewPerPass = 120;
constexpr int32_t kRunningSlewPerPass = 1200;
constexpr int64_t kPassNanoseconds = 1 * kNanosecondsPerMillisecond;  // the passes' grid
constexpr int64_t kEffectRetryNanoseconds = 50 * kNanosecondsPerMillisecond;
constexpr int32_t kMagnitudeLimit = 10000;
constexpr int64_t kErrorRepeatNanoseconds = 1000 * kNanosecondsPerMillisecond;
constexpr int64_t kReacquireSpacingNanoseconds = 250 * kNanosecondsPerMillisecond;
constexpr float kDampingScalePerPercent = 800.0f;
constexpr float kLockDampingScale = 150000.0f;
// The damping term is cut here before it becomes an integer: far beyond what the final clamp keeps, far
// inside i32, so a wild position reading cannot overflow the conversion.
constexpr float kDampingTermLimit = 1000000.0f;
constexpr int kVelocityTaps = kSmoothingTaps;  // applied in ring order from the newest slot: newest, oldest, ...
constexpr int kSmoothedSlots = 4;

// DirectInput results are HRESULTs: negative is a failure.
inline bool Failed(int32_t result) { return result < 0; }

// The platform's device: the DirectInput adapter in the product (see DirectInputDevice.h for what each
// operation is there), the virtual wheel on hosts, a scripted fake in tests. Results are HRESULTs.
template <class Device>
concept WheelOutputDevice = requires(Device device, const Device& constDevice, WindowHandle window,
                                     const DeviceGuid& guid, int32_t value, int32_t& position) {
    { device.CreateDeviceEvent() } -> std::same_as<bool>;
    { device.CreateInterface() } -> std::same_as<int32_t>;
    { device.CreateDevice(guid) } -> std::same_as<int32_t>;
    device.SetJoystickFormat();
    device.SetCooperativeLevel(window);
    device.DisableAutocenter();
    device.SetEventNotification();
    { device.Acquire() } -> std::same_as<int32_t>;
    device.Unacquire();
    { constDevice.HasEvent() } -> std::same_as<bool>;
    { constDevice.HasDevice() } -> std::same_as<bool>;
    { constDevice.HasEffect() } -> std::same_as<bool>;
    { device.CreateConstantForceEffect() } -> std::same_as<int32_t>;
    device.SetMagnitude(value);
    { constDevice.Magnitude() } -> std::same_as<int32_t>;
    { device.SetParameters() } -> std::same_as<int32_t>;
    { device.Start() } -> std::same_as<int32_t>;
    device.Stop();
    { device.WaitForPositionEvent(uint32_t{}) } -> std::same_as<bool>;
    { device.ReadPosition(position) } -> std::same_as<int32_t>;
    device.ReleaseEffect();
    device.ReleaseDevice();
    device.ReleaseInterface();
    device.CloseDeviceEvent();
};

// The output thread's clock: steady nanoseconds, and a sleep until a deadline; tests step it.
template <class Clock>
concept WheelClock = requires(Clock clock, const Clock& constClock, int64_t deadline) {
    { constClock.Now() } -> std::same_as<int64_t>;
    clock.SleepUntil(deadline);
};

// The wheel: opens the device, and from its own thread keeps one constant-force effect up to date with the
// engine's force plus damping, ramp and slew limit, recovering from device failures.
template <WheelOutputDevice Device, WheelClock Clock>
class BasicWheelOutput {
public:
    BasicWheelOutput() = default;
    ~BasicWheelOutput() { Close(); }
    BasicWheelOutput(const BasicWheelOutput&) = delete;
    BasicWheelOutput& operator=(const BasicWheelOutput&) = delete;

    // Engine thread. True with the output thread running.
    bool Open(WindowHandle window, const DeviceGuid* deviceGuid) {
        if (!OpenDevice(window, deviceGuid)) return false;
        try {
            outputThread = std::thread([this] { OutputThreadMain(); });
        } catch (const std::system_error&) {
            return false;
        }
        return true;
    }

    // Engine thread; also the destructor. Joins the output thread before anything it uses is released.
    void Close() {
        commandedForce.store(0);
        stopRequested.store(true);
        if (outputThread.joinable()) outputThread.join();
        device.ReleaseEffect();
        device.ReleaseDevice();
        device.ReleaseInterface();
        device.CloseDeviceEvent();
    }

    // Open up to the running thread: a failure at the interface, the device or Acquire returns false and
    // leaves what was made for the next Close. Engine thread; tests call it to drive passes themselves.
    bool OpenDevice(WindowHandle window, const DeviceGuid* deviceGuid) {
        Close();
        ResetForOpen();
        device.CreateDeviceEvent();
        if (Failed(device.CreateInterface())) return false;
        if (deviceGuid == nullptr || Failed(device.CreateDevice(*deviceGuid))) return false;
        // Exclusive and in the background, self-centring off; their results decide nothing.
        device.SetJoystickFormat();
        device.SetCooperativeLevel(window);
        device.DisableAutocenter();
        if (device.HasEvent()) device.SetEventNotification();
        return !Failed(device.Acquire());
    }

    // Output thread.
    void OutputThreadMain() {
        SetCurrentThreadPriorityHighest();
        while (!stopRequested.load()) RunPass();
    }

    // One pass of the output thread. Allocates nothing and holds no lock.
    void RunPass() {
        FollowEngine();
        if (!outputActive || clock.Now() < warmupEnd) {
            clock.SleepUntil(clock.Now() + kIdlePollNanoseconds);
            return;
        }
        if (!device.HasEffect() && !CreateConstantForceEffect()) {
            clock.SleepUntil(clock.Now() + kEffectRetryNanoseconds);
            return;
        }
        WaitForPassTime();
        const bool newPosition = device.HasEvent() && device.WaitForPositionEvent(0);
        const int64_t force = commandedForce.load();
        const int64_t damping = ComputeDamping(newPosition);
        const auto sum = static_cast<int32_t>(std::clamp<int64_t>(force + damping, -kMagnitudeLimit, kMagnitudeLimit));
        const bool ramping = clock.Now() < rampEnd;
        const int32_t target = ramping ? Ramp(sum) : sum;
        const int32_t limit = ramping ? kRampSlewPerPass : kRunningSlewPerPass;
        outputMagnitude += std::clamp(target - outputMagnitude, -limit, limit);
        device.SetMagnitude(outputMagnitude);
        const int32_t result = device.SetParameters();
        if (Failed(result)) {
            RecordError(result);
            Reacquire();
        } else if (!effectStarted) {
            StartEffect();
        }
    }

    // The seam with the engine: each read or written whole, without a lock.
    std::atomic<int32_t> commandedForce{0};   // engine writes; output thread reads, zeroes it when output goes off
    std::atomic<int32_t> dampingPercent{0};   // engine writes; output thread reads, zeroes it when output goes off
    std::atomic<bool> lockDamping{false};     // engine writes; output thread reads, clears it when output goes off
    std::atomic<bool> outputEnabled{false};   // engine writes; output thread reads
    std::atomic<bool> stopRequested{false};   // Open and Close write; output thread reads
    std::atomic<int32_t> lastError{0};        // output thread writes (Open resets); engine reads
    std::atomic<uint32_t> errorCount{0};      // output thread writes (Open resets); engine reads

    // The seams, for tests and benchmarks that play the device or step the clock.
    Device& PlatformDevice() { return device; }
    Clock& PlatformClock() { return clock; }

private:
    // Output thread. The effect at magnitude 0, created but not started.
    bool CreateConstantForceEffect() { return !Failed(device.CreateConstantForceEffect()); }

    // Output thread. Damping from the wheel's own velocity, in the sign of that velocity.
    int32_t ComputeDamping(bool newPosition) {
        const bool strong = lockDamping.load();
        const int32_t percent = dampingPercent.load();
        if ((!strong && percent <= 0) || !device.HasDevice()) return ResetDampingReading();
        if (!newPosition) return dampingOutput;
        int32_t position = 0;
        if (Failed(device.ReadPosition(position))) {
            Reacquire();
            return ResetDampingReading();
        }
        StoreVelocity(position, clock.Now());
        smoothedVelocity[smoothedIndex] = FilteredVelocity();
        smoothedIndex = (smoothedIndex + 1) % kSmoothedSlots;
        const float mean =
            (smoothedVelocity[0] + smoothedVelocity[1] + smoothedVelocity[2] + smoothedVelocity[3]) / 4.0f;
        const float scale = strong ? kLockDampingScale : static_cast<float>(percent) * kDampingScalePerPercent;
        dampingOutput = static_cast<int32_t>(std::clamp(scale * mean, -kDampingTermLimit, kDampingTermLimit));
        return dampingOutput;
    }

    // Output thread. A repeated code counts at most once a second; a change of code always counts.
    void RecordError(int32_t code) {
        const int64_t now = clock.Now();
        if (code == lastError.load() && lastErrorTime != 0 && now - lastErrorTime < kErrorRepeatNanoseconds) return;
        lastErrorTime = now;
        lastError.store(code);
        errorCount.fetch_add(1);
    }

    // Output thread. Stops the effect at once; gets the device back at most four times a second.
    void Reacquire() {
        if (!device.HasDevice()) return;
        effectStarted = false;
        if (device.HasEffect()) device.Stop();
        const int64_t now = clock.Now();
        if (lastReacquireTime != 0 && now - lastReacquireTime < kReacquireSpacingNanoseconds) return;
        lastReacquireTime = now;
        device.Unacquire();
        const int32_t acquired = device.Acquire();
        if (Failed(acquired)) RecordError(acquired);
        if (!device.HasEffect() && !CreateConstantForceEffect()) return;
        device.SetMagnitude(0);
        const int32_t result = device.SetParameters();
        if (Failed(result)) {
            RecordError(result);
            return;
        }
        if (outputActive && clock.Now() >= warmupEnd) StartEffect();
    }

    // Output thread. Starts the effect at magnitude 0; the real value follows on the next pass.
    void StartEffect() {
        if (!device.HasEffect() || effectStarted) return;
        const int32_t magnitude = device.Magnitude();
        device.SetMagnitude(0);
        int32_t result = device.SetParameters();
        if (!Failed(result)) result = device.Start();
        device.SetMagnitude(magnitude);
        if (Failed(result)) {
            RecordError(result);
            Reacquire();  // its spacing ends the recursion after one level
            return;
        }
        effectStarted = true;
    }

    // Engine thread in Open and Close, the output thread in between.
    Device device;
    Clock clock;

    // Output thread only.
    bool effectStarted = false;
    bool outputActive = false;
    int32_t outputMagnitude = 0;
    int64_t warmupEnd = 0;          // steady-clock ns
    int64_t rampEnd = 0;            // steady-clock ns
    int64_t lastReacquireTime = 0;  // steady-clock ns; 0 means never
    int64_t lastErrorTime = 0;      // steady-clock ns; 0 means never
    float velocityHistory[kVelocityTaps] = {};  // axis units per microsecond
    float smoothedVelocity[kSmoothedSlots] = {};
    int32_t velocityIndex = 0;
    int32_t smoothedIndex = 0;
    int32_t dampingOutput = 0;
    int32_t lastPosition = 0;       // lX of the last reading
    int64_t lastPositionTime = 0;   // steady-clock ns of that reading; 0 means none

    void ResetForOpen() {
        stopRequested.store(false);
        commandedForce.store(0);
        lastError.store(0);
        errorCount.store(0);
        outputEnabled.store(false);
        effectStarted = false;
        outputActive = false;
        outputMagnitude = 0;
        lastReacquireTime = 0;
        lastErrorTime = 0;
    }

    // Passes keep a 1 ms grid on the clock's best sleep, whether or not the device signals its moves (a
    // signal is taken at the pass). The first pass after idling, or one a whole period behind, starts the
    // grid again a period from now.
    void WaitForPassTime() {
        const int64_t now = clock.Now();
        if (now - nextPassTime >= kPassNanoseconds) nextPassTime = now + kPassNanoseconds;
        clock.SleepUntil(nextPassTime);
        nextPassTime += kPassNanoseconds;
    }

    // Follows the engine: every change of outputEnabled restarts the warm-up, the ramp and the magnitude.
    void FollowEngine() {
        const bool enabled = outputEnabled.load();
        if (enabled == outputActive) return;
        outputActive = enabled;
        outputMagnitude = 0;
        effectStarted = false;
        ClearDampingState();
        if (enabled) {
            const int64_t now = clock.Now();
            warmupEnd = now + kWarmupNanoseconds;
            rampEnd = now + kRampEndNanoseconds;
            if (device.HasEffect()) device.SetMagnitude(0);
            return;
        }
        commandedForce.store(0);
        dampingPercent.store(0);
        lockDamping.store(false);
        if (device.HasEffect()) {
            device.SetMagnitude(0);
            device.Stop();
        }
    }

    // The force grows from 0 to full over the ramp, by whole milliseconds since the warm-up ended.
    int32_t Ramp(int32_t value) const {
        const int64_t elapsedMilliseconds = std::max<int64_t>((clock.Now() - warmupEnd) / kNanosecondsPerMillisecond, 0);
        const float factor = std::min(static_cast<float>(elapsedMilliseconds) / kRampMilliseconds, 1.0f);
        return static_cast<int32_t>(static_cast<float>(value) * factor);
    }

    // The velocity since the last reading goes to the ring; the slot advances even when there was none.
    void StoreVelocity(int32_t position, int64_t now) {
        if (lastPositionTime != 0) {
            const int64_t microseconds = (now - lastPositionTime) / 1000;
            if (microseconds > 0) {
                const int64_t moved = static_cast<int64_t>(position) - lastPosition;  // any two readings
                velocityHistory[velocityIndex] = static_cast<float>(moved) / static_cast<float>(microseconds);
            }
        }
        lastPositionTime = now;
        lastPosition = position;
        newestSlot = velocityIndex;
        velocityIndex = (velocityIndex + 1) % kVelocityTaps;
    }

    float FilteredVelocity() const {
        float sum = 0.0f;
        for (int k = 0; k < kVelocityTaps; ++k) sum = sum + kSmoothingWeights[k] * velocityHistory[(newestSlot + k) % kVelocityTaps];
        return sum;
    }

    int32_t ResetDampingReading() {
        lastPositionTime = 0;
        dampingOutput = 0;
        return 0;
    }

    // The ring indices stay where they are.
    void ClearDampingState() {
        lastPositionTime = 0;
        dampingOutput = 0;
        std::fill(std::begin(velocityHistory), std::end(velocityHistory), 0.0f);
        std::fill(std::begin(smoothedVelocity), std::end(smoothedVelocity), 0.0f);
    }

    int32_t newestSlot = 0;    // output thread only: the slot of the last stored reading
    int64_t nextPassTime = 0;  // output thread only: steady-clock ns of the next pass
    std::thread outputThread;  // engine thread; joinable from Open to Close
};

}  // namespace veltor
