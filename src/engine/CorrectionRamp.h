#pragma once

namespace veltor {

// Moves the six carried ramp slots to this tick's oversteer torque and fills one correction per sub-sample.
void FillCorrectionRamp(float (&correctionRamp)[6], float oversteerTorque, float (&correction)[6]);

}  // namespace veltor
