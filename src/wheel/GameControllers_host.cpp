#include "wheel/GameControllers_host.h"

namespace veltor {

GameControllers::Objects::Controller& GameControllers::Objects::At(const DeviceGuid& guid) {
    for (Controller& controller : attached) {
        if (controller.guid == guid) return controller;
    }
    return attached.emplace_back(Controller{guid, L"", false, {}});
}

GameControllers::GameControllers() : objects(std::make_unique<Objects>()) {}
GameControllers::~GameControllers() = default;

void GameControllers::SetWindow(WindowHandle) {}

std::vector<GameController> GameControllers::List() {
    std::vector<GameController> plugged;
    for (const Objects::Controller& controller : objects->attached) {
        if (!controller.plugged) continue;
        plugged.push_back({controller.guid, controller.name});
        Remember(controller.guid, controller.name);
    }
    return plugged;
}

bool GameControllers::ReadButtons(const DeviceGuid& controller, ButtonStates& held) {
    ++objects->reads;
    for (const Objects::Controller& candidate : objects->attached) {
        if (candidate.guid != controller || !candidate.plugged) continue;
        held = candidate.held;
        Remember(controller, candidate.name);
        return true;
    }
    return false;
}

void GameControllers::CloseAll() {}

}  // namespace veltor
