#include "engine/BaseSignal.h"

#include <algorithm>
#include <cmath>

namespace veltor {

float FullScaleTorque(const EngineSettings& settings) {
    return 2000.0f / static_cast<float>(std::max(settings.ForceStrength, 1));
}

int32_t ToOutputUnits(float force, const EngineSettings& settings) {
    if (settings.ForceStrength <= 0) return 0;
    const float r = (force / 40.0f) * (static_cast<float>(settings.ForceStrength) / 50.0f) * 10000.0f;
    // A value beyond the i32 range (or NaN from a broken frame) has no defined truncation; pin it.
    if (std::isnan(r)) return 0;
    if (r >= 2147483520.0f) return 2147483520;
    if (r <= -2147483520.0f) return -2147483520;
    return static_cast<int32_t>(r);
}

int32_t ShapeOutput(int32_t value, bool, const EngineSettings&) { return value; }

float BaseTorque(const TelemetryFrame& frame, const GripResult& grip, int i) {
    const int32_t c = frame.torqueSampleCount;
    const float source = c > 0 ? frame.torqueSamples[std::min(i, c - 1)] : frame.steeringWheelTorque;
    return source * grip.steeringGain * grip.forceBalance;
}

SteeringLockResult ComputeSteeringLock(const TelemetryFrame&, const EngineSettings& settings) {
    SteeringLockResult result;
    result.dampingPercent = std::clamp(settings.Damping, 0, 100);
    return result;
}

}  // namespace veltor
