// The DLL's one export, DirectInput8Create, and the DirectInput object that finds the virtual wheels.
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>


#include "ButtonSchedule.h"
#include "CallLog.h"
#include "ComObject.h"
#include "VirtualButtonBox.h"
#include "VirtualDevice.h"
#include "WheelConfig.h"

namespace virtualwheel {

namespace {

constexpr DWORD kWheelDeviceType = DI8DEVTYPE_DRIVING | (DI8DEVTYPEDRIVING_DUALPEDALS << 8);

class VirtualDirectInput final : public ComObject<IDirectInput8W, &IID_IDirectInput8W> {
public:
    explicit VirtualDirectInput(const WheelConfig& wheelConfig) : config(wheelConfig) {}

    HRESULT STDMETHODCALLTYPE CreateDevice(REFGUID guid, LPDIRECTINPUTDEVICE8W* device, LPUNKNOWN outer) override {
        if (device == nullptr) return E_POINTER;
        *device = nullptr;
        if (guid == ButtonBoxGuid()) return CreateButtonBox(device, outer);
        const int index = WheelIndex(guid);
        const HRESULT result = index < 0 || outer != nullptr ? DIERR_DEVICENOTREG : DI_OK;
        LogCall("CreateDevice wheel=%d hr=0x%08lX", index, static_cast<unsigned long>(result));
        if (result == DI_OK) *device = new VirtualDevice(index, config);
        return result;
    }

    HRESULT STDMETHODCALLTYPE EnumDevices(DWORD type, LPDIENUMDEVICESCALLBACKW callback, LPVOID context,
                                          DWORD flags) override {
        if (callback == nullptr) return DIERR_INVALIDPARAM;
        const bool wanted = type == DI8DEVCLASS_ALL || type == DI8DEVCLASS_GAMECTRL ||
                            type == (kWheelDeviceType & 0xFF);
        const int count = wanted && !AnyWheelVanished() ? config.wheelCount : 0;
        LogCall("EnumDevices class=%lu flags=0x%lX wheels=%d", type, flags, count);
        for (int i = 0; i < count; ++i) {
            if (i == 0 && ControllerUnplugged(VirtualController::Wheel)) continue;
            DIDEVICEINSTANCEW instance{};
            instance.dwSize = sizeof instance;
            instance.guidInstance = WheelInstanceGuid(i);
            instance.guidProduct = WheelInstanceGuid(i);
            instance.dwDevType = kWheelDeviceType;
            lstrcpynW(instance.tszInstanceName, WheelProductName(i), MAX_PATH);
            lstrcpynW(instance.tszProductName, WheelProductName(i), MAX_PATH);
            instance.guidFFDriver = WheelInstanceGuid(i);
            if (callback(&instance, context) == DIENUM_STOP) return DI_OK;
        }
        ListButtonBox(type, flags, callback, context);
        return DI_OK;
    }

    HRESULT STDMETHODCALLTYPE GetDeviceStatus(REFGUID guid) override {
        return WheelIndex(guid) >= 0 ? DI_OK : DIERR_DEVICENOTREG;
    }
    HRESULT STDMETHODCALLTYPE RunControlPanel(HWND, DWORD) override { return DIERR_UNSUPPORTED; }
    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD) override { return DI_OK; }
    HRESULT STDMETHODCALLTYPE FindDevice(REFGUID, LPCWSTR, LPGUID) override { return DIERR_UNSUPPORTED; }
    HRESULT STDMETHODCALLTYPE EnumDevicesBySemantics(LPCWSTR, LPDIACTIONFORMATW, LPDIENUMDEVICESBYSEMANTICSCBW, LPVOID,
                                                     DWORD) override {
        return DIERR_UNSUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE ConfigureDevices(LPDICONFIGUREDEVICESCALLBACK, LPDICONFIGUREDEVICESPARAMSW, DWORD,
                                               LPVOID) override {
        return DIERR_UNSUPPORTED;
    }

private:
    // The wheel with this instance GUID, or -1 (also once the wheels have vanished, or the first is unplugged).
    int WheelIndex(REFGUID guid) const {
        if (AnyWheelVanished()) return -1;
        for (int i = 0; i < config.wheelCount; ++i) {
            if (guid == WheelInstanceGuid(i)) return i == 0 && ControllerUnplugged(VirtualController::Wheel) ? -1 : i;
        }
        return -1;
    }

    static HRESULT CreateButtonBox(LPDIRECTINPUTDEVICE8W* device, LPUNKNOWN outer) {
        const HRESULT result = ControllerUnplugged(VirtualController::Box) || outer != nullptr ? DIERR_DEVICENOTREG : DI_OK;
        LogCall("CreateDevice box hr=0x%08lX", static_cast<unsigned long>(result));
        if (result == DI_OK) *device = new VirtualButtonBox();
        return result;
    }

    // The box is a game controller without force feedback, listed after the wheels while it is plugged in.
    static void ListButtonBox(DWORD type, DWORD flags, LPDIENUMDEVICESCALLBACKW callback, LPVOID context) {
        const bool wanted = type == DI8DEVCLASS_ALL || type == DI8DEVCLASS_GAMECTRL || type == kButtonBoxDeviceType;
        if (!wanted || (flags & DIEDFL_FORCEFEEDBACK) != 0 || ControllerUnplugged(VirtualController::Box)) return;
        DIDEVICEINSTANCEW instance{};
        instance.dwSize = sizeof instance;
        instance.guidInstance = ButtonBoxGuid();
        instance.guidProduct = ButtonBoxGuid();
        instance.dwDevType = kButtonBoxDeviceType;
        lstrcpynW(instance.tszInstanceName, kButtonBoxName, MAX_PATH);
        lstrcpynW(instance.tszProductName, kButtonBoxName, MAX_PATH);
        callback(&instance, context);
    }

    const WheelConfig config;
};

}  // namespace
}  // namespace virtualwheel

extern "C" __declspec(dllexport) HRESULT WINAPI DirectInput8Create(HINSTANCE, DWORD version, REFIID riid,
                                                                   LPVOID* object, LPUNKNOWN outer) {
    using namespace virtualwheel;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const HRESULT result = riid == IID_IDirectInput8W && outer == nullptr ? DI_OK : DIERR_NOINTERFACE;
    LogCall("DirectInput8Create version=0x%04lX hr=0x%08lX", version, static_cast<unsigned long>(result));
    if (result != DI_OK) return result;
    const WheelConfig config = ReadWheelConfig();
    if (!config.faults.Has(FaultKind::Vanish)) PlugWheelsBackIn();
    *object = static_cast<IDirectInput8W*>(new VirtualDirectInput(config));
    return DI_OK;
}
