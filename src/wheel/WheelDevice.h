#pragma once
#include <string>
#include <vector>

#include "wheel/DeviceGuid.h"

namespace veltor {

// One attached force-feedback wheel, as enumeration found it.
struct WheelDevice {
    DeviceGuid instanceGuid;
    std::wstring productName;
};

// Empties `wheels` and fills it in the enumeration's order: attached game controllers with force
// feedback. The list stays empty when DirectInput cannot be created. GUI thread, once at start-up.
void EnumerateWheels(std::vector<WheelDevice>& wheels);

}  // namespace veltor
