#pragma once
#include <cstdint>

#include "settings/EngineSettings.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Gain from 0.01 to 1.0 for all outputs of a tick; a hit above the limits holds it down until
// `crashHoldUntil` (steady-clock nanoseconds), which a hit moves on.
float ComputeCrashGain(const TelemetryFrame& frame, const EngineSettings& settings, int64_t now,
                       int64_t& crashHoldUntil);

}  // namespace veltor
