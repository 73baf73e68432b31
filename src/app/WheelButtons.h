#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "settings/ButtonActions.h"
#include "wheel/GameControllers.h"

namespace veltor {

// Steady-clock nanoseconds.
inline constexpr int64_t kButtonRepeatDelayNs = 500'000'000;      // held this long, a button starts repeating
inline constexpr int64_t kButtonRepeatPeriodNs = 150'000'000;
inline constexpr int64_t kControllerRetryNs = 1'000'000'000;      // a controller gone is tried this often
inline constexpr int64_t kButtonCaptureNs = 5'000'000'000;        // Bind listens this long

static_assert(kControllerButtons == static_cast<size_t>(kBindableButtons));

DeviceGuid ControllerOf(const ButtonBinding& binding);
ButtonBinding BindingOf(const DeviceGuid& controller, int32_t button);

// One button's presses: a press acts at once and, where the action repeats, held it acts again after
// 500 ms and then every 150 ms. A button acts only once it has been seen up, so one held when reading
// began, or when its controller came back, does nothing until it is pressed anew.
class ButtonRepeat {
public:
    // Whether the button acts at `now`. An unreadable button counts as up, without arming it.
    bool Step(bool readable, bool down, bool repeats, int64_t now);
    void Disarm() { armed = held = false; }

private:
    bool armed = false;
    bool held = false;
    int64_t nextAt = 0;
};

// What one reading of the bound buttons asks for.
struct ButtonStep {
    std::array<bool, kButtonActionCount> acts{};  // each action whose button was pressed or repeats now
    std::vector<std::wstring> lines;              // controllers lost or back, for the session log
};

// The bound controllers, read on the GUI thread: the presses of each action's button, and each controller
// that goes away or comes back, told once per loss. A controller that is gone keeps its bindings and is
// tried again once a second. Time is steady-clock nanoseconds, given by the caller.
class WheelButtons {
public:
    explicit WheelButtons(GameControllers& controllers) : Controllers(controllers) {}

    ButtonStep Step(const ButtonBindings& bindings, int64_t now);
    // Every button must be seen up again before it acts (a binding changed, or Bind read the buttons).
    void Disarm();

private:
    struct Watched {
        DeviceGuid guid;
        bool bound = false;     // by some binding at this step
        bool readable = false;  // at this step
        bool lost = false;      // told as gone and not yet back
        int64_t retryAt = 0;
        ButtonStates held;
    };

    Watched& Watch(const DeviceGuid& guid);
    void Read(Watched& controller, int64_t now, std::vector<std::wstring>& lines);

    GameControllers& Controllers;
    std::vector<Watched> watched;
    std::array<ButtonRepeat, kButtonActionCount> repeats;
};

// Bind's listening: the first button to go down on any attached controller within 5 s. A button already
// held when listening began counts once it has been released and pressed again.
class ButtonCapture {
public:
    enum class Outcome { Listening, Bound, Ended };

    void Begin(GameControllers& controllers, int64_t now);
    void Cancel() { active = false; }
    bool Active() const { return active; }
    // Ended: the 5 s passed without a press, or nothing was listening.
    Outcome Step(GameControllers& controllers, int64_t now, ButtonBinding& bound);

private:
    struct Listened {
        DeviceGuid guid;
        bool read = false;  // `held` is from the last reading
        ButtonStates held;
    };

    std::vector<Listened> listened;
    bool active = false;
    int64_t deadline = 0;
};

// The dialog's text for a binding: "Veltor Virtual Wheel, button 4" (buttons counted from 1, as the
// system's controller settings count them), "Not connected, button 4" for a controller whose name is not
// known, "Not bound".
std::wstring BindingLabel(const ButtonBinding& binding, const std::wstring& controllerName);

}  // namespace veltor
