#pragma once
#include <cstdint>

#include "settings/EngineSettings.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

struct SteeringLockResult {
    int32_t dampingPercent = 0;  // Damping clamped to 0 to 100
    bool lockDamping = false;    // within 30 degrees of the lock
    bool pastLock = false;       // the stop force replaces the rest of the tick
    int32_t stopForce = 0;       // output units, valid when pastLock
};

// The damping for the wheel, and past the reported lock a stop force that pushes the rim back.
SteeringLockResult ComputeSteeringLock(const TelemetryFrame& frame, const EngineSettings& settings);

}  // namespace veltor
