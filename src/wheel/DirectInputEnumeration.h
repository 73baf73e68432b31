#pragma once
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <cstring>
#include <cwchar>
#include <vector>

namespace veltor {

// EnumDevices' callback for the Windows side of the wheel's files: appends each device's instance GUID and
// product name to the std::vector<Device> given as the context, in the enumeration's order.
template <class Device>
BOOL CALLBACK AppendDeviceInstance(LPCDIDEVICEINSTANCEW instance, LPVOID context) {
    Device device;
    static_assert(sizeof device.instanceGuid.bytes == sizeof instance->guidInstance);
    std::memcpy(device.instanceGuid.bytes, &instance->guidInstance, sizeof device.instanceGuid.bytes);
    device.productName.assign(instance->tszProductName, wcsnlen(instance->tszProductName, MAX_PATH));
    static_cast<std::vector<Device>*>(context)->push_back(device);
    return DIENUM_CONTINUE;
}

}  // namespace veltor
