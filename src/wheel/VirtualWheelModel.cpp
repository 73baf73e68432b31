#include "wheel/VirtualWheelModel.h"

#include <algorithm>
#include <cmath>

namespace veltor {

namespace {
constexpr float kFullScaleMagnitude = 10000.0f;
constexpr float kAxisCentre = 32767.0f;
constexpr float kAxisMaximum = 65535.0f;
}  // namespace

// Semi-implicit Euler: velocity first, then the angle from the new velocity; the rim stops at its lock.
void VirtualWheelModel::Advance(float seconds, int32_t magnitude, float handTorque) {
    const float drive = static_cast<float>(magnitude) / kFullScaleMagnitude * kFullScaleTorque + handTorque;
    while (seconds > 0.0f) {
        const float dt = std::min(seconds, kStepSeconds);
        const float torque = drive - kCentringStiffness * angle - kDamping * velocity;
        velocity = velocity + torque / kInertia * dt;
        angle = angle + velocity * dt;
        if (angle > kHalfRangeRadians || angle < -kHalfRangeRadians) {
            angle = std::clamp(angle, -kHalfRangeRadians, kHalfRangeRadians);
            velocity = 0.0f;
        }
        seconds = seconds - dt;
    }
}

int32_t VirtualWheelModel::AxisPosition() const {
    const float axis = kAxisCentre + angle / kHalfRangeRadians * kAxisCentre;
    return static_cast<int32_t>(std::clamp(axis, 0.0f, kAxisMaximum));
}

float ScriptedHandTorque(float amplitude, float frequency, double seconds) {
    constexpr double kTwoPi = 6.283185307179586;
    return amplitude * static_cast<float>(std::sin(kTwoPi * frequency * seconds));
}

}  // namespace veltor
