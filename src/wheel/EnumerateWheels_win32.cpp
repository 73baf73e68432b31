#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <cstring>
#include <cwchar>

#include "wheel/WheelDevice.h"

namespace veltor {

namespace {
constexpr DWORD kEnumerationFlags = DIEDFL_ATTACHEDONLY | DIEDFL_FORCEFEEDBACK;  // 0x101

BOOL CALLBACK AddWheel(LPCDIDEVICEINSTANCEW instance, LPVOID context) {
    auto& wheels = *static_cast<std::vector<WheelDevice>*>(context);
    WheelDevice wheel;
    static_assert(sizeof wheel.instanceGuid.bytes == sizeof instance->guidInstance);
    std::memcpy(wheel.instanceGuid.bytes, &instance->guidInstance, sizeof wheel.instanceGuid.bytes);
    wheel.productName.assign(instance->tszProductName, wcsnlen(instance->tszProductName, MAX_PATH));
    wheels.push_back(wheel);
    return DIENUM_CONTINUE;
}
}  // namespace

void EnumerateWheels(std::vector<WheelDevice>& wheels) {
    wheels.clear();
    IDirectInput8W* directInput = nullptr;
    if (FAILED(DirectInput8Create(GetModuleHandleW(nullptr), DIRECTINPUT_VERSION, IID_IDirectInput8W,
                                  reinterpret_cast<void**>(&directInput), nullptr))) {
        return;
    }
    directInput->EnumDevices(DI8DEVCLASS_GAMECTRL, AddWheel, &wheels, kEnumerationFlags);
    directInput->Release();
}

}  // namespace veltor
