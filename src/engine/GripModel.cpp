#include "engine/GripModel.h"

namespace veltor {

GripResult ComputeGrip(const TelemetryFrame&, const EngineSettings&, const CarRow&) { return GripResult{}; }

void FillCorrectionRamp(float (&)[6], float, float (&correction)[6]) {
    for (float& value : correction) value = 0.0f;
}

}  // namespace veltor
