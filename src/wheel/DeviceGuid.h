#pragma once
#include <cstdint>

namespace veltor {

// A DirectInput instance GUID as 16 plain bytes, so portable code can carry it by value.
struct DeviceGuid {
    uint8_t bytes[16] = {};

    bool operator==(const DeviceGuid&) const = default;
};

}  // namespace veltor
