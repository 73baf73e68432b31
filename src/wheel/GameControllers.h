#pragma once
#include <bitset>
#include <memory>
#include <string>
#include <vector>

#include "platform/WindowHandle.h"
#include "wheel/DeviceGuid.h"

namespace veltor {

// One attached game controller (a wheel, a button box, a pad), as enumeration found it.
struct GameController {
    DeviceGuid instanceGuid;
    std::wstring productName;
};

// DirectInput reports 128 buttons a controller at most.
inline constexpr size_t kControllerButtons = 128;
using ButtonStates = std::bitset<kControllerButtons>;  // set: held down

// The game controllers whose buttons the GUI thread reads, each through a DirectInput device of its own,
// non-exclusive and in the background, so the engine's exclusive hold on the wheel stays as it is and the
// buttons read while another window has the focus. A device is opened on its first read and let go when a
// read fails, so a controller that comes back is opened afresh. GUI thread only.
// Windows: DirectInput 8 (GameControllers_win32.cpp); hosts: controllers that a test plugs in and presses
// (GameControllers_host.cpp).
class GameControllers {
public:
    GameControllers();
    ~GameControllers();
    GameControllers(const GameControllers&) = delete;
    GameControllers& operator=(const GameControllers&) = delete;

    // The top-level window the devices cooperate with; before the first read.
    void SetWindow(WindowHandle window);
    // The attached game controllers, in the enumeration's order; empty when DirectInput can't be created.
    std::vector<GameController> List();
    // The buttons held now; false when the controller can't be read (absent, unplugged, lost).
    bool ReadButtons(const DeviceGuid& controller, ButtonStates& held);
    // The product name of a controller read before; empty for one never read.
    std::wstring ProductName(const DeviceGuid& controller) const;
    // Lets go of every device; the next read opens them again.
    void CloseAll();

    // The platform's side: DirectInput's objects on Windows, the plugged-in controllers on hosts.
    struct Objects;
    Objects& PlatformObjects() { return *objects; }

private:
    // Keeps a controller's name for ProductName (GameControllers.cpp, on every platform).
    void Remember(const DeviceGuid& controller, const std::wstring& productName);

    std::unique_ptr<Objects> objects;
    std::vector<GameController> named;  // every controller listed or read so far
};

}  // namespace veltor
