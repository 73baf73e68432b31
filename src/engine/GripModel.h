#pragma once
#include "settings/EngineSettings.h"
#include "settings/CarCoefficients.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

struct GripResult {
    float steeringGain = 1.0f;      // factor on the sim's torque, 0.25 to 1.0
    float resistanceTorque = 0.0f;  // Nm, opposes the steering angle
    float oversteerTorque = 0.0f;   // Nm, before the correction ramp
    float forceBalance = 1.0f;      // factor on the sim's torque, 0.5 to 1.5
    float steerExcess = 0.0f;       // rad
    float understeerLoad = 0.0f;
};

// Once per tick, on the frame's single-valued variables. Keeps nothing between ticks.
GripResult ComputeGrip(const TelemetryFrame& frame, const EngineSettings& settings, const CarRow& row);

}  // namespace veltor
