#include "wheel/GameControllers.h"

namespace veltor {

std::wstring GameControllers::ProductName(const DeviceGuid& controller) const {
    for (const GameController& known : named) {
        if (known.instanceGuid == controller) return known.productName;
    }
    return {};
}

void GameControllers::Remember(const DeviceGuid& controller, const std::wstring& productName) {
    for (GameController& known : named) {
        if (known.instanceGuid != controller) continue;
        known.productName = productName;
        return;
    }
    named.push_back({controller, productName});
}

}  // namespace veltor
