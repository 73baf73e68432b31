#pragma once
#include "settings/EngineSettings.h"

namespace veltor {

// Puts the signals of one output together; `priorityActed` tells whether the detail priority changed it.
float MixForce(const EngineSettings& settings, float base, float resistance, float texture, float other,
               bool* priorityActed = nullptr);

}  // namespace veltor
