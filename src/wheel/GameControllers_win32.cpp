#include "wheel/DirectInputEnumeration.h"
#include "wheel/GameControllers.h"

namespace veltor {

namespace {
constexpr DWORD kCooperativeFlags = DISCL_NONEXCLUSIVE | DISCL_BACKGROUND;  // 0xA
static_assert(sizeof(DIJOYSTATE2::rgbButtons) == kControllerButtons);

GUID ToGuid(const DeviceGuid& guid) {
    GUID result;
    std::memcpy(&result, guid.bytes, sizeof result);
    return result;
}
}  // namespace

struct GameControllers::Objects {
    struct Device {
        DeviceGuid guid;
        IDirectInputDevice8W* device = nullptr;
    };
    HWND window = nullptr;
    IDirectInput8W* directInput = nullptr;
    std::vector<Device> open;

    bool HaveInterface() {
        if (directInput != nullptr) return true;
        if (FAILED(DirectInput8Create(GetModuleHandleW(nullptr), DIRECTINPUT_VERSION, IID_IDirectInput8W,
                                      reinterpret_cast<void**>(&directInput), nullptr))) {
            directInput = nullptr;
        }
        return directInput != nullptr;
    }

    // The device of a controller, opened and acquired; null when it can't be. `productName` takes its name.
    IDirectInputDevice8W* Open(const DeviceGuid& guid, std::wstring& productName) {
        for (const Device& device : open) {
            if (device.guid == guid) return device.device;
        }
        IDirectInputDevice8W* device = nullptr;
        if (!HaveInterface() || FAILED(directInput->CreateDevice(ToGuid(guid), &device, nullptr))) return nullptr;
        device->SetDataFormat(&c_dfDIJoystick2);
        device->SetCooperativeLevel(window, kCooperativeFlags);
        if (FAILED(device->Acquire())) {
            device->Release();
            return nullptr;
        }
        DIDEVICEINSTANCEW info{};
        info.dwSize = sizeof info;
        if (SUCCEEDED(device->GetDeviceInfo(&info))) {
            productName.assign(info.tszProductName, wcsnlen(info.tszProductName, MAX_PATH));
        }
        open.push_back({guid, device});
        return device;
    }

    void Close(const DeviceGuid& guid) {
        for (size_t i = 0; i < open.size(); ++i) {
            if (open[i].guid != guid) continue;
            open[i].device->Unacquire();
            open[i].device->Release();
            open.erase(open.begin() + static_cast<std::ptrdiff_t>(i));
            return;
        }
    }
};

GameControllers::GameControllers() : objects(std::make_unique<Objects>()) {}

GameControllers::~GameControllers() {
    CloseAll();
    if (objects->directInput != nullptr) objects->directInput->Release();
}

void GameControllers::SetWindow(WindowHandle window) { objects->window = static_cast<HWND>(window); }

std::vector<GameController> GameControllers::List() {
    std::vector<GameController> controllers;
    if (objects->HaveInterface()) {
        objects->directInput->EnumDevices(DI8DEVCLASS_GAMECTRL, AppendDeviceInstance<GameController>, &controllers, DIEDFL_ATTACHEDONLY);
    }
    for (const GameController& controller : controllers) Remember(controller.instanceGuid, controller.productName);
    return controllers;
}

// A device that lost its input is acquired once more before the controller counts as gone.
bool GameControllers::ReadButtons(const DeviceGuid& controller, ButtonStates& held) {
    std::wstring productName;
    IDirectInputDevice8W* device = objects->Open(controller, productName);
    if (device == nullptr) return false;
    if (!productName.empty()) Remember(controller, productName);
    DIJOYSTATE2 state{};
    device->Poll();
    HRESULT result = device->GetDeviceState(sizeof state, &state);
    if (result == DIERR_INPUTLOST || result == DIERR_NOTACQUIRED) {
        result = SUCCEEDED(device->Acquire()) ? device->GetDeviceState(sizeof state, &state) : result;
    }
    if (FAILED(result)) {
        objects->Close(controller);
        return false;
    }
    for (size_t i = 0; i < kControllerButtons; ++i) held[i] = (state.rgbButtons[i] & 0x80) != 0;
    return true;
}

void GameControllers::CloseAll() {
    while (!objects->open.empty()) objects->Close(objects->open.back().guid);
}

}  // namespace veltor
