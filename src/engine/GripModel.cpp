#include "engine/GripModel.h"

#include <algorithm>
#include <cmath>

#include "engine/OutputStage.h"

namespace veltor {
namespace {

constexpr float kGripSpeedGate = 5.0f;              // m/s; at or below, the model is neutral
constexpr float kMinLongitudinalVelocity = 0.01f;   // m/s; below, the slip ratio means nothing
constexpr float kSlideSlipValue = 0.785f;           // correction per slider step once |slip| passes 1
constexpr float kArctanCurve = 0.273f;
constexpr float kQuarterPi = 0.7853982f;
constexpr float kTenthDegreesPerRadian = 572.958f;
constexpr float kMaxYawSteerGain = 0.45f;
constexpr float kYawBoostAngleLimit = 1.5f;         // rad
constexpr float kFreeSteerMargin = 0.175f;          // rad, about 10 degrees
constexpr float kResistanceFullScale = 40.0f;       // Nm at full settings and load, before ResistanceGain
constexpr float kLightenSlope = 0.75f;
constexpr float kMinSteeringGain = 0.25f;

// Correction toward the slide, from the slip ratio `s` = velocityY / |velocityX|.
float OversteerTorque(float s, const EngineSettings& settings) {
    const float correction = static_cast<float>(settings.OversteerCorrection);
    const float limit = FullScaleTorque(settings) * 0.5f;
    const float margin = static_cast<float>(settings.OversteerOffset) / kTenthDegreesPerRadian;
    float v = 0.0f;
    if (std::fabs(s) > 1.0f) {
        v = s >= 0.0f ? correction * kSlideSlipValue : correction * -kSlideSlipValue;
    } else {
        const float b = (1.0f - std::fabs(s)) * (s * kArctanCurve) + s * kQuarterPi;
        if (std::fabs(b) <= margin) return 0.0f;
        v = (b - std::copysign(margin, b)) * (2.0f - std::fabs(b)) * correction;
    }
    return std::clamp(v, -limit, limit);
}

// The angle by which the driver steers more than yaw and lateral acceleration explain.
float SteerExcess(const TelemetryFrame& frame, const CarRow& row) {
    const float a = std::fabs(frame.steeringWheelAngle);
    const float yawTerm = frame.yawRate * row.YawRateMultiplier / std::max(1.0f, frame.speed);
    const float boost = 1.0f + std::clamp(row.YawSteerGain, 0.0f, kMaxYawSteerGain) * std::min(kYawBoostAngleLimit, a);
    const float expected = std::fabs(boost * yawTerm + frame.latAccel / row.LateralAccelDivisor);
    return a - expected - kFreeSteerMargin + row.SteerMarginBias;
}

}  // namespace

GripResult ComputeGrip(const TelemetryFrame& frame, const EngineSettings& settings, const CarRow& row) {
    GripResult result;
    result.forceBalance = static_cast<float>(std::clamp(settings.CarForceBalance, 50, 150)) / 100.0f;
    if (!(frame.speed > kGripSpeedGate) || !(std::fabs(frame.velocityX) > kMinLongitudinalVelocity)) return result;

    float s = frame.velocityY / frame.velocityX;
    if (frame.velocityX < 0.0f) s = -s;
    if (settings.OversteerCorrection > 0) result.oversteerTorque = OversteerTorque(s, settings);

    result.steerExcess = SteerExcess(frame, row);
    const float load = std::min(1.0f, result.steerExcess);
    if (settings.UndersteerResistance > 0) {
        result.understeerLoad = std::max(load, 0.0f);
        if (result.understeerLoad > 0.0f) {
            const float magnitude = static_cast<float>(settings.UndersteerResistance) / 100.0f * result.understeerLoad *
                                    row.ResistanceGain * kResistanceFullScale;
            result.resistanceTorque = frame.steeringWheelAngle >= 0.0f ? -magnitude : magnitude;
        }
    }
    if (load > 0.0f && settings.UndersteerLighten > 0) {
        const float lightened = 1.0f - static_cast<float>(settings.UndersteerLighten) / 100.0f * load * kLightenSlope;
        result.steeringGain = std::max(lightened, kMinSteeringGain);
    }
    return result;
}

}  // namespace veltor
