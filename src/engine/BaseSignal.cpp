#include "engine/BaseSignal.h"

#include <algorithm>
#include <cmath>

namespace veltor {
namespace {

constexpr int32_t kParkedDivisor = 4;  // parked cars get a quarter of the force
constexpr float kMinForceUnitsPerStep = 100.0f;  // output units per step of MinForce
constexpr float kKneeOffsetUnits = 400.0f;
constexpr float kKneeCeilingUnits = 9996.0f;
constexpr float kMaxCurveSlope = 3.0f;
constexpr float kLockStopApplyBelowRadians = 8.0f;   // a reported half-lock this large has no stop
constexpr float kLockDampingZoneRadians = 0.5236f;   // 30 degrees short of the lock
constexpr float kLockFullStopRadians = 0.2618f;      // full stop force 15 degrees past the lock
constexpr float kLockStopUnits = 10000.0f;

// The low-force curve: a cubic Hermite from (0, 0) with slope k to (1, 1) with slope 1, below the knee.
int32_t LowForceCurve(int32_t value, int32_t minForce) {
    const float a = std::fabs(static_cast<float>(value));
    const float m = static_cast<float>(minForce) * kMinForceUnitsPerStep;
    const float knee = std::min(std::max(m + kKneeOffsetUnits, 2.0f * m), kKneeCeilingUnits);
    if (a >= knee) return value;
    const float t = a / knee;
    const float k = std::min(static_cast<float>(minForce) / 10.0f + 1.0f, kMaxCurveSlope);
    const float t2 = t * t;
    const float t3 = t2 * t;
    const float h = (t3 - 2.0f * t2 + t) * k + (3.0f * t2 - 2.0f * t3) + (t3 - t2);
    const float y = std::max(h * knee, a);
    const int32_t rounded = static_cast<int32_t>(std::round(y));  // halves away from zero
    return value < 0 ? -rounded : rounded;
}

}  // namespace

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

int32_t ShapeOutput(int32_t value, bool parked, const EngineSettings& settings) {
    if (parked && settings.ReduceForceWhenParked) return value / kParkedDivisor;
    if (settings.MinForce <= 0 || value == 0) return value;
    return LowForceCurve(value, settings.MinForce);
}

float BaseTorque(const TelemetryFrame& frame, const GripResult& grip, int i) {
    const int32_t c = frame.torqueSampleCount;
    const float source = c > 0 ? frame.torqueSamples[std::min(i, c - 1)] : frame.steeringWheelTorque;
    return source * grip.steeringGain * grip.forceBalance;
}

SteeringLockResult ComputeSteeringLock(const TelemetryFrame& frame, const EngineSettings& settings) {
    SteeringLockResult result;
    const float half = frame.steeringWheelAngleMax * 0.5f;
    const bool stopApplies = std::fabs(half) < kLockStopApplyBelowRadians;
    const float angle = std::fabs(frame.steeringWheelAngle);
    result.dampingPercent = std::clamp(settings.Damping, 0, 100);
    result.lockDamping = stopApplies && angle > half - kLockDampingZoneRadians;
    result.pastLock = stopApplies && angle > half;
    if (!result.pastLock) return result;

    const float p = std::min((angle - half) / kLockFullStopRadians, 1.0f);
    const float s = frame.steeringWheelAngle > 0.0f ? -1.0f : 1.0f;
    const int32_t o = std::clamp(ToOutputUnits(frame.steeringWheelTorque, settings), -kHandOverLimit, kHandOverLimit);
    const float r = static_cast<float>(o) * (1.0f - p) + s * p * kLockStopUnits;
    result.stopForce = std::clamp(static_cast<int32_t>(r), -kHandOverLimit, kHandOverLimit);
    return result;
}

}  // namespace veltor
