#pragma once
#include <string>
#include <vector>

#include "wheel/GameControllers.h"

namespace veltor {

// The host twin's controllers: a test plugs them in, holds their buttons and pulls them out again.
struct GameControllers::Objects {
    struct Controller {
        DeviceGuid guid;
        std::wstring name;
        bool plugged = true;
        ButtonStates held;
    };

    // The controller with this GUID, added unplugged with no name when there was none.
    Controller& At(const DeviceGuid& guid);

    std::vector<Controller> attached;  // in enumeration order
    int32_t reads = 0;                 // ReadButtons calls, whatever their outcome
};

}  // namespace veltor
