#include "VirtualEffect.h"

#include "CallLog.h"
#include "VirtualDevice.h"

namespace virtualwheel {

bool ReadMagnitude(LPCDIEFFECT parameters, LONG& magnitude) {
    if (parameters->cbTypeSpecificParams != sizeof(DICONSTANTFORCE) || parameters->lpvTypeSpecificParams == nullptr) {
        return false;
    }
    magnitude = static_cast<const DICONSTANTFORCE*>(parameters->lpvTypeSpecificParams)->lMagnitude;
    return true;
}

VirtualEffect::VirtualEffect(VirtualDevice& owner, LONG initialMagnitude) : device(owner), magnitude(initialMagnitude) {}

// The device keeps playing nothing once its effect is gone.
VirtualEffect::~VirtualEffect() {
    if (playing.load()) device.Play(false, 0);
    device.Release();
}

HRESULT VirtualEffect::SetParameters(LPCDIEFFECT parameters, DWORD flags) {
    // The magnitude asked for is logged whatever the outcome, so a failed pass still shows its value.
    LONG value = magnitude.load();
    HRESULT result = parameters == nullptr ? DIERR_INVALIDPARAM : DI_OK;
    if (result == 0 && (flags & DIEP_TYPESPECIFICPARAMS) != 0 && !ReadMagnitude(parameters, value)) {
        result = DIERR_INVALIDPARAM;
    }
    if (result == 0) result = device.FaultNow(FaultKind::SetParameters);
    if (result == 0) result = device.CheckExclusive();
    if (result == 0) {
        magnitude.store(value);
        if (playing.load()) device.Play(true, value);
    }
    LogCall("SetParameters magnitude=%ld flags=0x%08lX hr=0x%08lX", value, flags, static_cast<unsigned long>(result));
    return result;
}

HRESULT VirtualEffect::Start(DWORD iterations, DWORD flags) {
    HRESULT result = device.FaultNow(FaultKind::Vanish);
    if (result == 0) result = device.CheckExclusive();
    if (result == 0) {
        playing.store(true);
        device.Play(true, magnitude.load());
    }
    LogCall("Start iterations=%lu flags=0x%lX hr=0x%08lX", iterations, flags, static_cast<unsigned long>(result));
    return result;
}

HRESULT VirtualEffect::Stop() {
    playing.store(false);
    device.Play(false, 0);
    const HRESULT result = device.CheckExclusive();
    LogCall("Stop hr=0x%08lX", static_cast<unsigned long>(result));
    return result;
}

HRESULT VirtualEffect::GetEffectGuid(LPGUID guid) {
    if (guid == nullptr) return E_POINTER;
    *guid = GUID_ConstantForce;
    return DI_OK;
}

HRESULT VirtualEffect::GetEffectStatus(LPDWORD status) {
    if (status == nullptr) return E_POINTER;
    *status = playing.load() ? DIEGES_PLAYING : 0;
    return DI_OK;
}

HRESULT VirtualEffect::Initialize(HINSTANCE, DWORD, REFGUID) { return DI_OK; }
HRESULT VirtualEffect::GetParameters(LPDIEFFECT, DWORD) { return DIERR_UNSUPPORTED; }
HRESULT VirtualEffect::Download() { return DI_OK; }
HRESULT VirtualEffect::Unload() { return Stop(); }
HRESULT VirtualEffect::Escape(LPDIEFFESCAPE) { return DIERR_UNSUPPORTED; }

}  // namespace virtualwheel
