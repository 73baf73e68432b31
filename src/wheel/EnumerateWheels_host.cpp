#include "wheel/WheelDevice.h"

namespace veltor {

// The host has the one virtual wheel of DirectInputDevice_host.cpp.
void EnumerateWheels(std::vector<WheelDevice>& wheels) {
    wheels.clear();
    WheelDevice wheel;
    wheel.instanceGuid.bytes[0] = 0x56;  // 'V'
    wheel.productName = L"Veltor Virtual Wheel";
    wheels.push_back(wheel);
}

}  // namespace veltor
