#include "engine/SteeringLock.h"

#include <algorithm>
#include <cmath>

#include "engine/OutputStage.h"

namespace veltor {
namespace {

constexpr float kLockStopApplyBelowRadians = 8.0f;   // a reported half-lock this large has no stop
constexpr float kLockDampingZoneRadians = 0.5236f;   // 30 degrees short of the lock
constexpr float kLockFullStopRadians = 0.2618f;      // full stop force 15 degrees past the lock

}  // namespace

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
    const float r = static_cast<float>(o) * (1.0f - p) + s * p * kFullScaleUnits;
    result.stopForce = std::clamp(static_cast<int32_t>(r), -kHandOverLimit, kHandOverLimit);
    return result;
}

}  // namespace veltor
