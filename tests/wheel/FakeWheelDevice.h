#pragma once
#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"

namespace veltor::test {

// A clock that moves only when the code under test sleeps or waits, or when the test steps it.
struct SteppedClock {
    int64_t now = 1000000000;  // ns; not 0, which the wheel takes for "never"
    int64_t Now() const { return now; }
    void SleepUntil(int64_t deadline) {
        if (deadline > now) now = deadline;
    }
};

// A device that plays a script: results to return, a position to report, an event the test signals.
// It logs every call in order, with the magnitude for SetParameters.
struct FakeWheelDevice {
    struct Call {
        std::string name;
        int32_t magnitude = 0;
    };

    SteppedClock* clock = nullptr;  // the wheel's own clock, so waits step it
    std::vector<Call> calls;
    int32_t createInterfaceResult = 0;
    int32_t createDeviceResult = 0;
    int32_t acquireResult = 0;
    int32_t createEffectResult = 0;
    int32_t setParametersResult = 0;
    int32_t startResult = 0;
    int32_t readResult = 0;
    bool withEvent = true;
    bool signalled = false;  // the next wait returns at once, signalled
    int32_t position = 32767;

    bool eventCreated = false;
    bool interfaceCreated = false;
    bool deviceCreated = false;
    bool effectCreated = false;
    int32_t magnitude = 0;

    void Log(const char* name, int32_t value = 0) { calls.push_back({name, value}); }
    int32_t Logged(const char* name, int32_t result) {
        Log(name);
        return result;
    }
    int32_t Count(const std::string& name) const {
        const auto named = [&](const Call& c) { return c.name == name; };
        return static_cast<int32_t>(std::count_if(calls.begin(), calls.end(), named));
    }
    std::vector<int32_t> SentMagnitudes() const {
        std::vector<int32_t> sent;
        for (const Call& c : calls) {
            if (c.name == "SetParameters") sent.push_back(c.magnitude);
        }
        return sent;
    }

    bool CreateDeviceEvent() { return eventCreated = withEvent; }
    int32_t CreateInterface() {
        interfaceCreated = createInterfaceResult >= 0;
        return Logged("CreateInterface", createInterfaceResult);
    }
    int32_t CreateDevice(const DeviceGuid&) {
        deviceCreated = createDeviceResult >= 0;
        return Logged("CreateDevice", createDeviceResult);
    }
    void SetJoystickFormat() { Log("SetJoystickFormat"); }
    void SetCooperativeLevel(WindowHandle) { Log("SetCooperativeLevel"); }
    void DisableAutocenter() { Log("DisableAutocenter"); }
    void SetEventNotification() { Log("SetEventNotification"); }
    int32_t Acquire() { return Logged("Acquire", acquireResult); }
    void Unacquire() { Log("Unacquire"); }
    bool HasEvent() const { return eventCreated; }
    bool HasDevice() const { return deviceCreated; }
    bool HasEffect() const { return effectCreated; }
    int32_t CreateConstantForceEffect() {
        magnitude = 0;
        effectCreated = createEffectResult >= 0;
        return Logged("CreateEffect", createEffectResult);
    }
    void SetMagnitude(int32_t value) { magnitude = value; }
    int32_t Magnitude() const { return magnitude; }
    int32_t SetParameters() {
        Log("SetParameters", magnitude);
        return setParametersResult;
    }
    int32_t Start() { return Logged("Start", startResult); }
    void Stop() { Log("Stop"); }
    // A wait that is not signalled takes its whole timeout on the stepped clock.
    bool WaitForPositionEvent(uint32_t timeoutMilliseconds) {
        if (!signalled) clock->now += static_cast<int64_t>(timeoutMilliseconds) * 1000000;
        return std::exchange(signalled, false);
    }
    int32_t ReadPosition(int32_t& value) {
        if (readResult >= 0) value = position;
        return Logged("ReadPosition", readResult);
    }
    void ReleaseEffect() {
        if (effectCreated) Log("ReleaseEffect");
        effectCreated = false;
    }
    void ReleaseDevice() {
        if (deviceCreated) Log("ReleaseDevice");
        deviceCreated = false;
    }
    void ReleaseInterface() { interfaceCreated = false; }
    void CloseDeviceEvent() { eventCreated = false; }
};

}  // namespace veltor::test
