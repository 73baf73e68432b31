#pragma once
#include "engine/GripModel.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Base torque of sub-sample `i`: the sim's torque with the grip model's gain and the force balance.
float BaseTorque(const TelemetryFrame& frame, const GripResult& grip, int i);

}  // namespace veltor
