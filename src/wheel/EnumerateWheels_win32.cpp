#include "wheel/DirectInputEnumeration.h"
#include "wheel/WheelDevice.h"

namespace veltor {

namespace {
constexpr DWORD kEnumerationFlags = DIEDFL_ATTACHEDONLY | DIEDFL_FORCEFEEDBACK;  // 0x101
}  // namespace

void EnumerateWheels(std::vector<WheelDevice>& wheels) {
    wheels.clear();
    IDirectInput8W* directInput = nullptr;
    if (FAILED(DirectInput8Create(GetModuleHandleW(nullptr), DIRECTINPUT_VERSION, IID_IDirectInput8W,
                                  reinterpret_cast<void**>(&directInput), nullptr))) {
        return;
    }
    directInput->EnumDevices(DI8DEVCLASS_GAMECTRL, AppendDeviceInstance<WheelDevice>, &wheels, kEnumerationFlags);
    directInput->Release();
}

}  // namespace veltor
