#pragma once
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <mutex>

#include "ComObject.h"

namespace virtualwheel {

// The button box's instance GUID and name; it is listed among the game controllers, without force feedback,
// while the button plan doesn't unplug it.
GUID ButtonBoxGuid();
inline constexpr wchar_t kButtonBoxName[] = L"Veltor Virtual Button Box";
inline constexpr DWORD kButtonBoxDeviceType = DI8DEVTYPE_SUPPLEMENTAL;
inline constexpr DWORD kButtonBoxButtons = 32;

// A game controller with buttons only, pressed by the button plan (ButtonSchedule.h).
class VirtualButtonBox final : public ComObject<IDirectInputDevice8W, &IID_IDirectInputDevice8W> {
public:
    // IDirectInputDevice8W: the calls a program makes to read buttons; the others are not supported.
    HRESULT STDMETHODCALLTYPE GetCapabilities(LPDIDEVCAPS caps) override;
    HRESULT STDMETHODCALLTYPE EnumObjects(LPDIENUMDEVICEOBJECTSCALLBACKW, LPVOID, DWORD) override;
    HRESULT STDMETHODCALLTYPE GetProperty(REFGUID, LPDIPROPHEADER) override;
    HRESULT STDMETHODCALLTYPE SetProperty(REFGUID, LPCDIPROPHEADER) override;
    HRESULT STDMETHODCALLTYPE Acquire() override;
    HRESULT STDMETHODCALLTYPE Unacquire() override;
    HRESULT STDMETHODCALLTYPE GetDeviceState(DWORD size, LPVOID data) override;
    HRESULT STDMETHODCALLTYPE GetDeviceData(DWORD, LPDIDEVICEOBJECTDATA, LPDWORD, DWORD) override;
    HRESULT STDMETHODCALLTYPE SetDataFormat(LPCDIDATAFORMAT format) override;
    HRESULT STDMETHODCALLTYPE SetEventNotification(HANDLE) override;
    HRESULT STDMETHODCALLTYPE SetCooperativeLevel(HWND, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE GetObjectInfo(LPDIDEVICEOBJECTINSTANCEW, DWORD, DWORD) override;
    HRESULT STDMETHODCALLTYPE GetDeviceInfo(LPDIDEVICEINSTANCEW instance) override;
    HRESULT STDMETHODCALLTYPE RunControlPanel(HWND, DWORD) override;
    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD, REFGUID) override;
    HRESULT STDMETHODCALLTYPE CreateEffect(REFGUID, LPCDIEFFECT, LPDIRECTINPUTEFFECT* effect, LPUNKNOWN) override;
    HRESULT STDMETHODCALLTYPE EnumEffects(LPDIENUMEFFECTSCALLBACKW, LPVOID, DWORD) override;
    HRESULT STDMETHODCALLTYPE GetEffectInfo(LPDIEFFECTINFOW, REFGUID) override;
    HRESULT STDMETHODCALLTYPE GetForceFeedbackState(LPDWORD) override;
    HRESULT STDMETHODCALLTYPE SendForceFeedbackCommand(DWORD) override;
    HRESULT STDMETHODCALLTYPE EnumCreatedEffectObjects(LPDIENUMCREATEDEFFECTOBJECTSCALLBACK, LPVOID, DWORD) override;
    HRESULT STDMETHODCALLTYPE Escape(LPDIEFFESCAPE) override;
    HRESULT STDMETHODCALLTYPE Poll() override;
    HRESULT STDMETHODCALLTYPE SendDeviceData(DWORD, LPCDIDEVICEOBJECTDATA, LPDWORD, DWORD) override;
    HRESULT STDMETHODCALLTYPE EnumEffectsInFile(LPCWSTR, LPDIENUMEFFECTSINFILECALLBACK, LPVOID, DWORD) override;
    HRESULT STDMETHODCALLTYPE WriteEffectToFile(LPCWSTR, DWORD, LPDIFILEEFFECT, DWORD) override;
    HRESULT STDMETHODCALLTYPE BuildActionMap(LPDIACTIONFORMATW, LPCWSTR, DWORD) override;
    HRESULT STDMETHODCALLTYPE SetActionMap(LPDIACTIONFORMATW, LPCWSTR, DWORD) override;
    HRESULT STDMETHODCALLTYPE GetImageInfo(LPDIDEVICEIMAGEINFOHEADERW) override;

private:
    std::mutex lock;  // guards the two below
    bool formatSet = false;
    bool acquired = false;
};

}  // namespace virtualwheel
