#include "app/WheelButtons.h"

#include <cstring>

namespace veltor {
namespace {

std::wstring ControllerLine(const std::wstring& name, const wchar_t* news) {
    return (name.empty() ? L"A bound game controller" : L"Game controller " + name) + news;
}

}  // namespace

DeviceGuid ControllerOf(const ButtonBinding& binding) {
    DeviceGuid guid;
    std::memcpy(guid.bytes, binding.controller.data(), sizeof guid.bytes);
    return guid;
}

ButtonBinding BindingOf(const DeviceGuid& controller, int32_t button) {
    ButtonBinding binding;
    std::memcpy(binding.controller.data(), controller.bytes, sizeof controller.bytes);
    binding.button = button;
    return binding;
}

// A step that comes late acts once, not once for each repeat it missed.
bool ButtonRepeat::Step(bool readable, bool down, bool repeats, int64_t now) {
    if (!readable) {
        Disarm();
        return false;
    }
    if (!down) {
        armed = true;
        held = false;
        return false;
    }
    if (!armed) return false;
    if (!held) {
        held = true;
        nextAt = now + kButtonRepeatDelayNs;
        return true;
    }
    if (!repeats || now < nextAt) return false;
    nextAt += kButtonRepeatPeriodNs;
    if (nextAt <= now) nextAt = now + kButtonRepeatPeriodNs;
    return true;
}

ButtonStep WheelButtons::Step(const ButtonBindings& bindings, int64_t now) {
    ButtonStep step;
    for (Watched& controller : watched) controller.bound = false;
    for (const ButtonBinding& binding : bindings) {
        if (binding.IsSet()) Watch(ControllerOf(binding)).bound = true;
    }
    std::erase_if(watched, [](const Watched& controller) { return !controller.bound; });
    for (Watched& controller : watched) Read(controller, now, step.lines);
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        if (!bindings[i].IsSet()) {
            repeats[i].Disarm();
            continue;
        }
        const Watched& controller = Watch(ControllerOf(bindings[i]));
        const bool down = controller.held[static_cast<size_t>(bindings[i].button)];
        step.acts[i] = repeats[i].Step(controller.readable, down, kButtonActionRows[i].repeats, now);
    }
    return step;
}

void WheelButtons::Disarm() {
    for (ButtonRepeat& repeat : repeats) repeat.Disarm();
}

WheelButtons::Watched& WheelButtons::Watch(const DeviceGuid& guid) {
    for (Watched& controller : watched) {
        if (controller.guid == guid) return controller;
    }
    Watched& added = watched.emplace_back();
    added.guid = guid;
    return added;
}

void WheelButtons::Read(Watched& controller, int64_t now, std::vector<std::wstring>& lines) {
    if (controller.lost && now < controller.retryAt) {
        controller.readable = false;
        return;
    }
    controller.readable = Controllers.ReadButtons(controller.guid, controller.held);
    if (controller.readable == controller.lost) {  // back after a loss, or newly gone
        controller.lost = !controller.readable;
        lines.push_back(ControllerLine(Controllers.ProductName(controller.guid),
                                       controller.lost ? L" is gone; its button bindings stay until it returns."
                                                       : L" is back; its buttons work again."));
    }
    if (!controller.readable) {
        controller.held.reset();
        controller.retryAt = now + kControllerRetryNs;
    }
}

void ButtonCapture::Begin(GameControllers& controllers, int64_t now) {
    listened.clear();
    for (const GameController& controller : controllers.List()) listened.emplace_back().guid = controller.instanceGuid;
    active = true;
    deadline = now + kButtonCaptureNs;
}

ButtonCapture::Outcome ButtonCapture::Step(GameControllers& controllers, int64_t now, ButtonBinding& bound) {
    if (!active) return Outcome::Ended;
    for (Listened& controller : listened) {
        ButtonStates held;
        if (!controllers.ReadButtons(controller.guid, held)) {
            controller.read = false;
            continue;
        }
        const ButtonStates pressed = controller.read ? held & ~controller.held : ButtonStates();
        controller.held = held;
        controller.read = true;
        for (size_t button = 0; button < pressed.size(); ++button) {
            if (!pressed[button]) continue;
            bound = BindingOf(controller.guid, static_cast<int32_t>(button));
            active = false;
            return Outcome::Bound;
        }
    }
    if (now < deadline) return Outcome::Listening;
    active = false;
    return Outcome::Ended;
}

std::wstring BindingLabel(const ButtonBinding& binding, const std::wstring& controllerName) {
    if (!binding.IsSet()) return L"Not bound";
    const std::wstring button = L"button " + std::to_wstring(binding.button + 1);
    return (controllerName.empty() ? L"Not connected" : controllerName) + L", " + button;
}

}  // namespace veltor
