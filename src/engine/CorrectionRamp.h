#pragma once
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Moves the carried ramp slots to this tick's oversteer torque and fills one correction per sub-sample.
void FillCorrectionRamp(float (&correctionRamp)[kMaxSubSamples], float oversteerTorque,
                        float (&correction)[kMaxSubSamples]);

}  // namespace veltor
