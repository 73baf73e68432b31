#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <cstring>

#include "wheel/DirectInputDevice.h"

namespace veltor {

// The published DIEFFECT: 56 bytes in 32-bit programs, 80 in 64-bit ones, where its four pointers are wider and aligned.
static_assert(sizeof(DIEFFECT) == (sizeof(void*) == 8 ? 80 : 56), "DIEFFECT as DirectInput 8 publishes it");

namespace {
constexpr DWORD kCooperativeFlags = DISCL_EXCLUSIVE | DISCL_BACKGROUND;  // 9
constexpr DWORD kEffectFlags = DIEFF_CARTESIAN | DIEFF_OBJECTOFFSETS;    // 0x12
constexpr DWORD kSetParametersFlags = DIEP_TYPESPECIFICPARAMS | DIEP_NORESTART;  // 0x40000100
constexpr DWORD kFullGain = 10000;
constexpr DWORD kStartIterations = 1;

GUID ToGuid(const DeviceGuid& guid) {
    GUID result;
    static_assert(sizeof result == sizeof guid.bytes);
    std::memcpy(&result, guid.bytes, sizeof result);
    return result;
}

template <class Interface>
void ReleaseObject(Interface*& object) {
    if (object == nullptr) return;
    object->Release();
    object = nullptr;
}
}  // namespace

struct DirectInputDevice::Objects {
    IDirectInput8W* directInput = nullptr;
    IDirectInputDevice8W* device = nullptr;
    IDirectInputEffect* effect = nullptr;
    DICONSTANTFORCE constantForce{};  // lMagnitude is what SetParameters sends
    DIEFFECT effectParams{};
    DWORD effectAxis = DIJOFS_X;      // the X axis, as the offset of lX
    LONG effectDirection = 0;
    HANDLE deviceEvent = nullptr;
};

DirectInputDevice::DirectInputDevice() : objects(std::make_unique<Objects>()) {}
DirectInputDevice::~DirectInputDevice() = default;

bool DirectInputDevice::CreateDeviceEvent() {
    objects->deviceEvent = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    return objects->deviceEvent != nullptr;
}

int32_t DirectInputDevice::CreateInterface() {
    return DirectInput8Create(GetModuleHandleW(nullptr), DIRECTINPUT_VERSION, IID_IDirectInput8W,
                              reinterpret_cast<void**>(&objects->directInput), nullptr);
}

int32_t DirectInputDevice::CreateDevice(const DeviceGuid& guid) {
    if (objects->directInput == nullptr) return E_POINTER;
    return objects->directInput->CreateDevice(ToGuid(guid), &objects->device, nullptr);
}

void DirectInputDevice::SetJoystickFormat() {
    if (objects->device != nullptr) objects->device->SetDataFormat(&c_dfDIJoystick);
}

void DirectInputDevice::SetCooperativeLevel(WindowHandle window) {
    if (objects->device != nullptr) objects->device->SetCooperativeLevel(static_cast<HWND>(window), kCooperativeFlags);
}

void DirectInputDevice::DisableAutocenter() {
    if (objects->device == nullptr) return;
    DIPROPDWORD property{};
    property.diph.dwSize = sizeof(DIPROPDWORD);        // 20
    property.diph.dwHeaderSize = sizeof(DIPROPHEADER); // 16
    property.diph.dwObj = 0;
    property.diph.dwHow = DIPH_DEVICE;
    property.dwData = DIPROPAUTOCENTER_OFF;
    objects->device->SetProperty(DIPROP_AUTOCENTER, &property.diph);
}

void DirectInputDevice::SetEventNotification() {
    if (objects->device != nullptr) objects->device->SetEventNotification(objects->deviceEvent);
}

int32_t DirectInputDevice::Acquire() { return objects->device != nullptr ? objects->device->Acquire() : E_POINTER; }

void DirectInputDevice::Unacquire() {
    if (objects->device != nullptr) objects->device->Unacquire();
}

bool DirectInputDevice::HasEvent() const { return objects->deviceEvent != nullptr; }
bool DirectInputDevice::HasDevice() const { return objects->device != nullptr; }
bool DirectInputDevice::HasEffect() const { return objects->effect != nullptr; }

int32_t DirectInputDevice::CreateConstantForceEffect() {
    if (objects->device == nullptr) return E_POINTER;
    objects->constantForce.lMagnitude = 0;
    DIEFFECT& p = objects->effectParams;
    p.dwSize = sizeof(DIEFFECT);
    p.dwFlags = kEffectFlags;
    p.dwDuration = INFINITE;
    p.dwSamplePeriod = 0;
    p.dwGain = kFullGain;
    p.dwTriggerButton = DIEB_NOTRIGGER;
    p.dwTriggerRepeatInterval = 0;
    p.cAxes = 1;
    p.rgdwAxes = &objects->effectAxis;
    p.rglDirection = &objects->effectDirection;
    p.lpEnvelope = nullptr;
    p.cbTypeSpecificParams = sizeof(DICONSTANTFORCE);
    p.lpvTypeSpecificParams = &objects->constantForce;
    p.dwStartDelay = 0;
    return objects->device->CreateEffect(GUID_ConstantForce, &p, &objects->effect, nullptr);
}

void DirectInputDevice::SetMagnitude(int32_t magnitude) { objects->constantForce.lMagnitude = magnitude; }
int32_t DirectInputDevice::Magnitude() const { return objects->constantForce.lMagnitude; }

int32_t DirectInputDevice::SetParameters() {
    if (objects->effect == nullptr) return E_POINTER;
    return objects->effect->SetParameters(&objects->effectParams, kSetParametersFlags);
}

int32_t DirectInputDevice::Start() {
    return objects->effect != nullptr ? objects->effect->Start(kStartIterations, 0) : E_POINTER;
}

void DirectInputDevice::Stop() {
    if (objects->effect != nullptr) objects->effect->Stop();
}

bool DirectInputDevice::WaitForPositionEvent(uint32_t timeoutMilliseconds) {
    return WaitForSingleObject(objects->deviceEvent, timeoutMilliseconds) == WAIT_OBJECT_0;
}

int32_t DirectInputDevice::ReadPosition(int32_t& position) {
    if (objects->device == nullptr) return E_POINTER;
    DIJOYSTATE state{};
    const HRESULT result = objects->device->GetDeviceState(sizeof state, &state);
    if (SUCCEEDED(result)) position = state.lX;
    return result;
}

void DirectInputDevice::ReleaseEffect() {
    if (objects->effect != nullptr) objects->effect->Stop();
    ReleaseObject(objects->effect);
}

void DirectInputDevice::ReleaseDevice() {
    if (objects->device != nullptr) objects->device->Unacquire();
    ReleaseObject(objects->device);
}

void DirectInputDevice::ReleaseInterface() { ReleaseObject(objects->directInput); }

void DirectInputDevice::CloseDeviceEvent() {
    if (objects->deviceEvent != nullptr) CloseHandle(objects->deviceEvent);
    objects->deviceEvent = nullptr;
}

}  // namespace veltor
