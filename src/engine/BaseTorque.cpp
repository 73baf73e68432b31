#include "engine/BaseTorque.h"

#include <algorithm>

namespace veltor {

// Sub-samples beyond the frame's count repeat its last; a frame without them has the scalar torque.
float BaseTorque(const TelemetryFrame& frame, const GripResult& grip, int i) {
    const int32_t c = frame.torqueSampleCount;
    const float source = c > 0 ? frame.torqueSamples[std::min(i, c - 1)] : frame.steeringWheelTorque;
    return source * grip.steeringGain * grip.forceBalance;
}

}  // namespace veltor
