#pragma once
#include <algorithm>
#include <cstdint>
#include <map>
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

// A device that plays a script: results to return by call, a position to report, an event the test
// signals. It logs every call in order, and each magnitude sent.
struct FakeWheelDevice {
    SteppedClock* clock = nullptr;  // the wheel's own clock, so waits step it
    std::vector<std::string> calls;
    std::vector<int32_t> sent;               // the magnitude of each SetParameters
    std::map<std::string, int32_t> results;  // 0 for a call without one
    bool signalled = false;  // the next wait returns at once, signalled
    int32_t position = 32767;
    bool eventCreated = false;
    bool deviceCreated = false;
    bool effectCreated = false;
    int32_t magnitude = 0;

    int32_t Logged(const char* name) {
        calls.push_back(name);
        return results[name];
    }
    int32_t Count(const std::string& name) const {
        return static_cast<int32_t>(std::count(calls.begin(), calls.end(), name));
    }

    bool CreateDeviceEvent() { return eventCreated = true; }
    int32_t CreateInterface() { return Logged("CreateInterface"); }
    int32_t CreateDevice(const DeviceGuid&) {
        const int32_t result = Logged("CreateDevice");
        deviceCreated = result >= 0;
        return result;
    }
    void SetJoystickFormat() { Logged("SetJoystickFormat"); }
    void SetCooperativeLevel(WindowHandle) { Logged("SetCooperativeLevel"); }
    void DisableAutocenter() { Logged("DisableAutocenter"); }
    void SetEventNotification() { Logged("SetEventNotification"); }
    int32_t Acquire() { return Logged("Acquire"); }
    void Unacquire() { Logged("Unacquire"); }
    bool HasEvent() const { return eventCreated; }
    bool HasDevice() const { return deviceCreated; }
    bool HasEffect() const { return effectCreated; }
    int32_t CreateConstantForceEffect() {
        magnitude = 0;
        const int32_t result = Logged("CreateEffect");
        effectCreated = result >= 0;
        return result;
    }
    void SetMagnitude(int32_t value) { magnitude = value; }
    int32_t Magnitude() const { return magnitude; }
    int32_t SetParameters() {
        sent.push_back(magnitude);
        return Logged("SetParameters");
    }
    int32_t Start() { return Logged("Start"); }
    void Stop() { Logged("Stop"); }
    // A wait that is not signalled takes its whole timeout on the stepped clock.
    bool WaitForPositionEvent(uint32_t timeoutMilliseconds) {
        if (!signalled) clock->now += static_cast<int64_t>(timeoutMilliseconds) * 1000000;
        return std::exchange(signalled, false);
    }
    int32_t ReadPosition(int32_t& value) {
        const int32_t result = Logged("ReadPosition");
        if (result >= 0) value = position;
        return result;
    }
    void ReleaseEffect() {
        if (std::exchange(effectCreated, false)) Logged("ReleaseEffect");
    }
    void ReleaseDevice() {
        if (std::exchange(deviceCreated, false)) Logged("ReleaseDevice");
    }
    void ReleaseInterface() {}
    void CloseDeviceEvent() { eventCreated = false; }
};

}  // namespace veltor::test
