#pragma once
#include <cstdint>

#include "engine/EngineSettings.h"
#include "engine/GripModel.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

constexpr int32_t kHandOverLimit = 9996;  // output units; 10000 is DirectInput's full scale

// The torque in newton metres that maps to full scale: 2000 / max(ForceStrength, 1).
float FullScaleTorque(const EngineSettings& settings);

// Newton metres to output units, truncated toward zero, not clamped to the hand-over range.
int32_t ToOutputUnits(float force, const EngineSettings& settings);

// Parked reduction or low-force curve on a clamped output value.
int32_t ShapeOutput(int32_t value, bool parked, const EngineSettings& settings);

// Base torque of sub-sample `i`: the sim's torque with the grip model's gain and the force balance.
float BaseTorque(const TelemetryFrame& frame, const GripResult& grip, int i);

struct SteeringLockResult {
    int32_t dampingPercent = 0;  // Damping clamped to 0 to 100
    bool lockDamping = false;    // within 30 degrees of the lock
    bool pastLock = false;       // the stop force replaces the rest of the tick
    int32_t stopForce = 0;       // output units, valid when pastLock
};

SteeringLockResult ComputeSteeringLock(const TelemetryFrame& frame, const EngineSettings& settings);

}  // namespace veltor
