#pragma once
#include <cstdint>
#include <memory>

#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"

namespace veltor {

// The DirectInput objects of one open wheel: the interface, the device, the constant-force effect with
// its parameters, and the device's event. Results are HRESULTs (negative on failure). The Windows build
// defines it over DirectInput 8 (DirectInputDevice_win32.cpp); hosts over a virtual wheel
// (DirectInputDevice_host.cpp). Engine thread in Open and Close, the output thread in between.
class DirectInputDevice {
public:
    DirectInputDevice();
    ~DirectInputDevice();
    DirectInputDevice(const DirectInputDevice&) = delete;
    DirectInputDevice& operator=(const DirectInputDevice&) = delete;

    // Auto-reset, not signalled, unnamed. False when none could be made.
    bool CreateDeviceEvent();
    int32_t CreateInterface();                        // DirectInput8Create
    int32_t CreateDevice(const DeviceGuid& guid);     // CreateDevice
    void SetJoystickFormat();                         // SetDataFormat(c_dfDIJoystick)
    void SetCooperativeLevel(WindowHandle window);    // DISCL_EXCLUSIVE | DISCL_BACKGROUND
    void DisableAutocenter();                         // DIPROP_AUTOCENTER off
    void SetEventNotification();
    int32_t Acquire();
    void Unacquire();

    bool HasEvent() const;
    bool HasDevice() const;
    bool HasEffect() const;

    // Magnitude 0, the effect's parameters filled afresh, CreateEffect(GUID_ConstantForce). Not started.
    int32_t CreateConstantForceEffect();
    void SetMagnitude(int32_t magnitude);
    int32_t Magnitude() const;
    int32_t SetParameters();  // type-specific parameters only, without a restart
    int32_t Start();          // one iteration
    void Stop();

    // True when the device signalled a change of position within the timeout.
    bool WaitForPositionEvent(uint32_t timeoutMilliseconds);
    // GetDeviceState of the joystick state; `position` takes lX.
    int32_t ReadPosition(int32_t& position);

    void ReleaseEffect();     // Stop, Release
    void ReleaseDevice();     // Unacquire, Release
    void ReleaseInterface();
    void CloseDeviceEvent();

    // The platform's side: the DirectInput interfaces on Windows, the virtual wheel on hosts.
    struct Objects;
    Objects& PlatformObjects() { return *objects; }

private:
    std::unique_ptr<Objects> objects;
};

}  // namespace veltor
