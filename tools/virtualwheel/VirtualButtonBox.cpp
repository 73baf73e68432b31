#include "VirtualButtonBox.h"

#include <cstring>

#include "ButtonSchedule.h"
#include "CallLog.h"

namespace virtualwheel {

namespace {
constexpr DWORD kJoystickStateSize = sizeof(DIJOYSTATE);    // 80: 32 buttons
constexpr DWORD kJoystickState2Size = sizeof(DIJOYSTATE2);  // 272: 128 buttons
}  // namespace

GUID ButtonBoxGuid() { return {0x56454C54, 0x4255, 0x5454, {0x4F, 0x4E, 0x42, 0x4F, 0x58, 0x00, 0x00, 0x01}}; }

HRESULT VirtualButtonBox::GetCapabilities(LPDIDEVCAPS caps) {
    if (caps == nullptr || caps->dwSize != sizeof(DIDEVCAPS)) return DIERR_INVALIDPARAM;
    std::memset(reinterpret_cast<char*>(caps) + sizeof caps->dwSize, 0, sizeof(DIDEVCAPS) - sizeof caps->dwSize);
    caps->dwFlags = DIDC_ATTACHED;
    caps->dwDevType = kButtonBoxDeviceType;
    caps->dwButtons = kButtonBoxButtons;
    return DI_OK;
}

HRESULT VirtualButtonBox::Acquire() {
    std::lock_guard guard(lock);
    HRESULT result = DI_OK;
    if (ControllerUnplugged(VirtualController::Box)) result = DIERR_UNPLUGGED;
    else if (!formatSet) result = DIERR_INVALIDPARAM;
    else if (acquired) result = S_FALSE;
    acquired = acquired || result == DI_OK;
    LogCall("Acquire box hr=0x%08lX", static_cast<unsigned long>(result));
    return result;
}

HRESULT VirtualButtonBox::Unacquire() {
    std::lock_guard guard(lock);
    const HRESULT result = acquired ? DI_OK : DI_NOEFFECT;
    acquired = false;
    return result;
}

// Unplugged, the box loses its input as a real one does: the program must acquire it anew once it is back.
HRESULT VirtualButtonBox::GetDeviceState(DWORD size, LPVOID data) {
    if (data == nullptr || (size != kJoystickStateSize && size != kJoystickState2Size)) return DIERR_INVALIDPARAM;
    std::lock_guard guard(lock);
    if (ControllerUnplugged(VirtualController::Box)) {
        acquired = false;
        return DIERR_INPUTLOST;
    }
    if (!acquired) return DIERR_NOTACQUIRED;
    std::memset(data, 0, size);
    auto* state = static_cast<DIJOYSTATE*>(data);
    for (DWORD& pov : state->rgdwPOV) pov = 0xFFFFFFFF;
    FillButtons(VirtualController::Box, state->rgbButtons, kButtonBoxButtons);
    return DI_OK;
}

HRESULT VirtualButtonBox::SetDataFormat(LPCDIDATAFORMAT format) {
    if (format == nullptr) return DIERR_INVALIDPARAM;
    std::lock_guard guard(lock);
    if (acquired) return DIERR_ACQUIRED;
    formatSet = format->dwDataSize == kJoystickStateSize || format->dwDataSize == kJoystickState2Size;
    return formatSet ? DI_OK : DIERR_INVALIDPARAM;
}

// Any level will do: the box has no force feedback that would want it held exclusively.
HRESULT VirtualButtonBox::SetCooperativeLevel(HWND, DWORD flags) {
    LogCall("SetCooperativeLevel box flags=0x%lX", flags);
    return DI_OK;
}

HRESULT VirtualButtonBox::GetDeviceInfo(LPDIDEVICEINSTANCEW instance) {
    if (instance == nullptr || instance->dwSize != sizeof(DIDEVICEINSTANCEW)) return DIERR_INVALIDPARAM;
    instance->guidInstance = ButtonBoxGuid();
    instance->guidProduct = ButtonBoxGuid();
    instance->dwDevType = kButtonBoxDeviceType;
    lstrcpynW(instance->tszInstanceName, kButtonBoxName, MAX_PATH);
    lstrcpynW(instance->tszProductName, kButtonBoxName, MAX_PATH);
    instance->guidFFDriver = GUID_NULL;
    return DI_OK;
}

HRESULT VirtualButtonBox::CreateEffect(REFGUID, LPCDIEFFECT, LPDIRECTINPUTEFFECT* effect, LPUNKNOWN) {
    if (effect != nullptr) *effect = nullptr;
    return DIERR_UNSUPPORTED;
}

HRESULT VirtualButtonBox::SetEventNotification(HANDLE) { return DI_OK; }
HRESULT VirtualButtonBox::SetProperty(REFGUID, LPCDIPROPHEADER) { return DI_OK; }

}  // namespace virtualwheel
