#pragma once
#include <cstdint>
#include <vector>

#include "telemetry/TelemetryFrame.h"

namespace veltor::sim {

// How a made-up car steers while it has grip: the steering wheel angle is exactly
// yawRateMultiplier × yaw rate / speed + lateral acceleration / lateralAccelDivisor.
struct CarBehaviour {
    double yawRateMultiplier = 40.0;
    double lateralAccelDivisor = 90.0;
    bool grip = true;  // false: the front end pushes in every corner, and no straight is driven
};

// A drive of corners at speeds from 12 to 60 m/s in which the steering follows `behaviour`, with stretches
// that tell nothing of it (understeer, ABS braking with a twitch of the wheel, a slide with countersteer, a
// slow lap of the paddock). Deterministic: every value is a function of the tick.
TelemetryFrame GripDriveFrame(const CarBehaviour& behaviour, int64_t tick);
std::vector<TelemetryFrame> MakeGripDrive(const CarBehaviour& behaviour, double seconds);

}  // namespace veltor::sim
