#pragma once
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

#include "DeviceCalls.h"
#include "ComObject.h"
#include "FaultFile.h"
#include "WheelConfig.h"
#include "wheel/VirtualWheelModel.h"

namespace virtualwheel {

// Instance GUID of wheel `index` (0 or 1) in enumeration.
GUID WheelInstanceGuid(int index);
// Product name of wheel `index`.
const wchar_t* WheelProductName(int index);
// True once a wheel has vanished: from then on enumeration finds none, until a DirectInput is created
// without a vanishing in its faults, which plugs the wheels back in.
bool AnyWheelVanished();
void PlugWheelsBackIn();

// One virtual force-feedback wheel. Its rim turns on a thread of its own, every millisecond, under the
// force that its effect plays and the scripted hand; a change of lX sets the device event.
class VirtualDevice final : public DeviceCalls {
public:
    VirtualDevice(int index, const WheelConfig& config);
    ~VirtualDevice() override;

    // IDirectInputDevice8W: the calls a force-feedback program makes; DeviceCalls answers the others.
    HRESULT STDMETHODCALLTYPE GetCapabilities(LPDIDEVCAPS caps) override;
    HRESULT STDMETHODCALLTYPE SetProperty(REFGUID property, LPCDIPROPHEADER header) override;
    HRESULT STDMETHODCALLTYPE Acquire() override;
    HRESULT STDMETHODCALLTYPE Unacquire() override;
    HRESULT STDMETHODCALLTYPE GetDeviceState(DWORD size, LPVOID data) override;
    HRESULT STDMETHODCALLTYPE SetDataFormat(LPCDIDATAFORMAT format) override;
    HRESULT STDMETHODCALLTYPE SetEventNotification(HANDLE event) override;
    HRESULT STDMETHODCALLTYPE SetCooperativeLevel(HWND window, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE GetDeviceInfo(LPDIDEVICEINSTANCEW instance) override;
    HRESULT STDMETHODCALLTYPE CreateEffect(REFGUID effectGuid, LPCDIEFFECT parameters, LPDIRECTINPUTEFFECT* effect,
                                           LPUNKNOWN outer) override;

    // For the effect. The failure injected for `kind` now, or 0.
    int32_t FaultNow(FaultKind kind);
    // 0 when the effect may play; DIERR_NOTEXCLUSIVEACQUIRED when the device is not held exclusively.
    HRESULT CheckExclusive();
    void Play(bool playing, int32_t magnitude);

private:
    void TurnRim();
    void StopRim();

    const int index;
    const WheelConfig config;
    const int64_t createdMicroseconds;

    std::mutex lock;  // guards everything below, between the program's threads and the rim thread
    bool formatSet = false;
    bool exclusive = false;
    bool acquired = false;
    bool vanished = false;
    bool playing = false;
    int32_t playedMagnitude = 0;
    HANDLE event = nullptr;
    veltor::VirtualWheelModel model;
    int32_t lastAxisPosition = 32767;
    FaultFile faultFile;

    std::atomic<bool> rimStop{false};
    std::thread rim;  // the rim's thread, from construction to the last Release
};

}  // namespace virtualwheel
