#pragma once
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <mutex>

#include "DeviceCalls.h"

namespace virtualwheel {

// The button box's instance GUID and name; it is listed among the game controllers, without force feedback,
// while the button plan doesn't unplug it.
GUID ButtonBoxGuid();
inline constexpr wchar_t kButtonBoxName[] = L"Veltor Virtual Button Box";
inline constexpr DWORD kButtonBoxDeviceType = DI8DEVTYPE_SUPPLEMENTAL;
inline constexpr DWORD kButtonBoxButtons = 32;

// A game controller with buttons only, pressed by the button plan (ButtonSchedule.h).
class VirtualButtonBox final : public DeviceCalls {
public:
    // IDirectInputDevice8W: the calls a program makes to read buttons; DeviceCalls answers the others.
    HRESULT STDMETHODCALLTYPE GetCapabilities(LPDIDEVCAPS caps) override;
    HRESULT STDMETHODCALLTYPE SetProperty(REFGUID, LPCDIPROPHEADER) override;
    HRESULT STDMETHODCALLTYPE Acquire() override;
    HRESULT STDMETHODCALLTYPE Unacquire() override;
    HRESULT STDMETHODCALLTYPE GetDeviceState(DWORD size, LPVOID data) override;
    HRESULT STDMETHODCALLTYPE SetDataFormat(LPCDIDATAFORMAT format) override;
    HRESULT STDMETHODCALLTYPE SetEventNotification(HANDLE) override;
    HRESULT STDMETHODCALLTYPE SetCooperativeLevel(HWND, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE GetDeviceInfo(LPDIDEVICEINSTANCEW instance) override;
    HRESULT STDMETHODCALLTYPE CreateEffect(REFGUID, LPCDIEFFECT, LPDIRECTINPUTEFFECT* effect, LPUNKNOWN) override;

private:
    std::mutex lock;  // guards the two below
    bool formatSet = false;
    bool acquired = false;
};

}  // namespace virtualwheel
