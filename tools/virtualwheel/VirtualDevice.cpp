#include "VirtualDevice.h"

#include <cstring>

#include "ButtonSchedule.h"
#include "CallLog.h"
#include "VirtualEffect.h"

namespace virtualwheel {

namespace {
constexpr DWORD kRimStepMilliseconds = 1;
constexpr float kMicrosecondsPerSecond = 1e6f;
constexpr DWORD kWheelDeviceType = DI8DEVTYPE_DRIVING | (DI8DEVTYPEDRIVING_DUALPEDALS << 8);
constexpr DWORD kJoystickStateSize = sizeof(DIJOYSTATE);    // 80
constexpr DWORD kJoystickState2Size = sizeof(DIJOYSTATE2);  // 272

std::atomic<bool> gVanished{false};  // once a wheel has gone, enumeration finds none
}  // namespace

bool AnyWheelVanished() { return gVanished.load(); }
void PlugWheelsBackIn() { gVanished.store(false); }

GUID WheelInstanceGuid(int index) {
    GUID guid = {0x56454C54, 0x5749, 0x4845, {0x45, 0x4C, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};
    guid.Data4[7] = static_cast<unsigned char>(index + 1);
    return guid;
}

const wchar_t* WheelProductName(int index) {
    return index == 0 ? L"Veltor Virtual Wheel" : L"Veltor Virtual Wheel 2";
}

VirtualDevice::VirtualDevice(int wheelIndex, const WheelConfig& wheelConfig)
    : index(wheelIndex), config(wheelConfig), createdMicroseconds(NowMicroseconds()), faultFile(config.faultFile) {
    rim = std::thread([this] { TurnRim(); });
}

VirtualDevice::~VirtualDevice() { StopRim(); }

// The rim moves on in real time; lX changing is what the device event reports.
void VirtualDevice::TurnRim() {
    int64_t last = NowMicroseconds();
    while (!rimStop.load()) {
        Sleep(kRimStepMilliseconds);
        const int64_t now = NowMicroseconds();
        const float seconds = static_cast<float>(now - last) / kMicrosecondsPerSecond;
        last = now;
        const double sinceCreation = static_cast<double>(now - createdMicroseconds) / 1e6;
        const float hand = veltor::ScriptedHandTorque(config.handAmplitude, config.handFrequency, sinceCreation);
        std::lock_guard guard(lock);
        model.Advance(seconds, acquired && playing && !vanished ? playedMagnitude : 0, hand);
        const int32_t position = model.AxisPosition();
        if (position != lastAxisPosition && acquired && event != nullptr) SetEvent(event);
        lastAxisPosition = position;
    }
}

void VirtualDevice::StopRim() {
    rimStop.store(true);
    if (rim.joinable()) rim.join();
}

int32_t VirtualDevice::FaultNow(FaultKind kind) {
    const int64_t now = NowMicroseconds();
    const int64_t elapsedMs = (now - createdMicroseconds) / 1000;
    std::lock_guard guard(lock);
    const FaultPlan& switched = faultFile.Poll(now);
    if (!vanished && (config.faults.ResultAt(FaultKind::Vanish, elapsedMs) != 0 ||
                      switched.ResultAt(FaultKind::Vanish, elapsedMs) != 0)) {
        vanished = true;
        gVanished.store(true);
        LogCall("Vanish wheel=%d", index);
    }
    if (vanished) return DIERR_INPUTLOST;
    const int32_t planned = config.faults.ResultAt(kind, elapsedMs);
    return planned != 0 ? planned : switched.ResultAt(kind, elapsedMs);
}

HRESULT VirtualDevice::CheckExclusive() {
    std::lock_guard guard(lock);
    return acquired && exclusive ? DI_OK : DIERR_NOTEXCLUSIVEACQUIRED;
}

void VirtualDevice::Play(bool play, int32_t magnitude) {
    std::lock_guard guard(lock);
    playing = play;
    playedMagnitude = play ? magnitude : 0;
}

HRESULT VirtualDevice::GetCapabilities(LPDIDEVCAPS caps) {
    if (caps == nullptr || caps->dwSize != sizeof(DIDEVCAPS)) return DIERR_INVALIDPARAM;
    std::memset(reinterpret_cast<char*>(caps) + sizeof caps->dwSize, 0, sizeof(DIDEVCAPS) - sizeof caps->dwSize);
    caps->dwFlags = DIDC_ATTACHED | DIDC_FORCEFEEDBACK;
    caps->dwDevType = kWheelDeviceType;
    caps->dwAxes = 3;
    caps->dwButtons = 12;
    caps->dwPOVs = 1;
    caps->dwFFSamplePeriod = 1000;
    caps->dwFFMinTimeResolution = 1000;
    return DI_OK;
}

HRESULT VirtualDevice::SetProperty(REFGUID property, LPCDIPROPHEADER header) {
    if (header == nullptr) return DIERR_INVALIDPARAM;
    if (&property != &DIPROP_AUTOCENTER) {
        LogCall("SetProperty id=%llu", static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(&property)));
        return DI_OK;
    }
    if (header->dwSize != sizeof(DIPROPDWORD) || header->dwHeaderSize != sizeof(DIPROPHEADER)) {
        LogCall("SetProperty AUTOCENTER dwSize=%lu dwHeaderSize=%lu hr=0x%08lX", header->dwSize,
                header->dwHeaderSize, static_cast<unsigned long>(DIERR_INVALIDPARAM));
        return DIERR_INVALIDPARAM;
    }
    const auto* value = reinterpret_cast<const DIPROPDWORD*>(header);
    LogCall("SetProperty AUTOCENTER dwSize=%lu dwHeaderSize=%lu dwObj=%lu dwHow=%lu dwData=%lu", header->dwSize,
            header->dwHeaderSize, header->dwObj, header->dwHow, value->dwData);
    return DI_OK;
}

HRESULT VirtualDevice::Acquire() {
    HRESULT result = FaultNow(FaultKind::Acquire);
    {
        std::lock_guard guard(lock);
        if (vanished || (index == 0 && ControllerUnplugged(VirtualController::Wheel))) result = DIERR_UNPLUGGED;
        else if (result == 0 && !formatSet) result = DIERR_INVALIDPARAM;
        else if (result == 0 && acquired) result = S_FALSE;
        else if (result == 0) acquired = true;
    }
    LogCall("Acquire wheel=%d hr=0x%08lX", index, static_cast<unsigned long>(result));
    return result;
}

// Unacquiring a force-feedback device stops what it plays.
HRESULT VirtualDevice::Unacquire() {
    HRESULT result = DI_OK;
    {
        std::lock_guard guard(lock);
        if (!acquired) result = DI_NOEFFECT;
        acquired = false;
        playing = false;
        playedMagnitude = 0;
    }
    LogCall("Unacquire wheel=%d hr=0x%08lX", index, static_cast<unsigned long>(result));
    return result;
}

HRESULT VirtualDevice::GetDeviceState(DWORD size, LPVOID data) {
    if (data == nullptr || (size != kJoystickStateSize && size != kJoystickState2Size)) return DIERR_INVALIDPARAM;
    const HRESULT fault = FaultNow(FaultKind::GetDeviceState);
    if (fault != 0) {
        LogCall("GetDeviceState hr=0x%08lX", static_cast<unsigned long>(fault));
        return fault;
    }
    std::lock_guard guard(lock);
    if (index == 0 && ControllerUnplugged(VirtualController::Wheel)) return DIERR_INPUTLOST;
    if (!acquired) return DIERR_NOTACQUIRED;
    std::memset(data, 0, size);
    auto* state = static_cast<DIJOYSTATE*>(data);
    state->lX = model.AxisPosition();
    for (DWORD& pov : state->rgdwPOV) pov = 0xFFFFFFFF;
    if (index == 0) FillButtons(VirtualController::Wheel, state->rgbButtons, size == sizeof(DIJOYSTATE2) ? 128 : 32);
    return DI_OK;
}

HRESULT VirtualDevice::SetDataFormat(LPCDIDATAFORMAT format) {
    if (format == nullptr) return DIERR_INVALIDPARAM;
    LogCall("SetDataFormat dwSize=%lu dwObjSize=%lu dwFlags=0x%lX dwDataSize=%lu dwNumObjs=%lu", format->dwSize,
            format->dwObjSize, format->dwFlags, format->dwDataSize, format->dwNumObjs);
    std::lock_guard guard(lock);
    if (acquired) return DIERR_ACQUIRED;
    formatSet = format->dwDataSize == kJoystickStateSize || format->dwDataSize == kJoystickState2Size;
    return formatSet ? DI_OK : DIERR_INVALIDPARAM;
}

HRESULT VirtualDevice::SetEventNotification(HANDLE newEvent) {
    LogCall("SetEventNotification event=%s", newEvent != nullptr ? "set" : "none");
    std::lock_guard guard(lock);
    if (acquired) return DIERR_ACQUIRED;
    event = newEvent;
    return DI_OK;
}

HRESULT VirtualDevice::SetCooperativeLevel(HWND window, DWORD flags) {
    LogCall("SetCooperativeLevel flags=0x%lX window=%s", flags, window != nullptr ? "set" : "none");
    std::lock_guard guard(lock);
    exclusive = (flags & DISCL_EXCLUSIVE) != 0;
    return DI_OK;
}

HRESULT VirtualDevice::GetDeviceInfo(LPDIDEVICEINSTANCEW instance) {
    if (instance == nullptr || instance->dwSize != sizeof(DIDEVICEINSTANCEW)) return DIERR_INVALIDPARAM;
    instance->guidInstance = WheelInstanceGuid(index);
    instance->guidProduct = WheelInstanceGuid(index);
    instance->dwDevType = kWheelDeviceType;
    lstrcpynW(instance->tszInstanceName, WheelProductName(index), MAX_PATH);
    lstrcpynW(instance->tszProductName, WheelProductName(index), MAX_PATH);
    instance->guidFFDriver = WheelInstanceGuid(index);
    instance->wUsagePage = 1;
    instance->wUsage = 4;
    return DI_OK;
}

HRESULT VirtualDevice::CreateEffect(REFGUID effectGuid, LPCDIEFFECT p, LPDIRECTINPUTEFFECT* effect, LPUNKNOWN outer) {
    if (effect == nullptr) return E_POINTER;
    *effect = nullptr;
    if (effectGuid != GUID_ConstantForce || outer != nullptr) return DIERR_DEVICENOTREG;
    if (p == nullptr || p->dwSize != sizeof(DIEFFECT)) {
        LogCall("CreateEffect dwSize=%lu hr=0x%08lX", p != nullptr ? p->dwSize : 0UL,
                static_cast<unsigned long>(DIERR_INVALIDPARAM));
        return DIERR_INVALIDPARAM;
    }
    LONG magnitude = 0;
    const bool hasMagnitude = ReadMagnitude(p, magnitude);
    LogCall("CreateEffect guid=ConstantForce dwSize=%lu dwFlags=0x%lX dwDuration=0x%lX dwSamplePeriod=%lu dwGain=%lu "
            "dwTriggerButton=0x%lX dwTriggerRepeatInterval=%lu cAxes=%lu axis0=%ld direction0=%ld lpEnvelope=%s "
            "cbTypeSpecificParams=%lu magnitude=%ld dwStartDelay=%lu",
            p->dwSize, p->dwFlags, p->dwDuration, p->dwSamplePeriod, p->dwGain, p->dwTriggerButton,
            p->dwTriggerRepeatInterval, p->cAxes,
            p->cAxes > 0 && p->rgdwAxes != nullptr ? static_cast<long>(p->rgdwAxes[0]) : -1L,
            p->cAxes > 0 && p->rglDirection != nullptr ? p->rglDirection[0] : -1L,
            p->lpEnvelope != nullptr ? "set" : "null", p->cbTypeSpecificParams, magnitude, p->dwStartDelay);
    if (!hasMagnitude || p->cAxes != 1 || p->rgdwAxes == nullptr) return DIERR_INVALIDPARAM;
    if (FaultNow(FaultKind::Vanish) != 0) return DIERR_INPUTLOST;
    AddRef();
    *effect = new VirtualEffect(*this, magnitude);
    return DI_OK;
}

}  // namespace virtualwheel
