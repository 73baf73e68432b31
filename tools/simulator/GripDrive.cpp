#include "GripDrive.h"

#include <cmath>

namespace veltor::sim {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTickRate = 60.0;
constexpr double kSubSampleRate = 360.0;
constexpr float kSteeringAngleMax = 7.85f;       // rad, lock to lock
constexpr double kSpeedMid = 36.0;               // m/s
constexpr double kSpeedSwing = 24.0;             // m/s, so 12 to 60
constexpr double kSpeedPeriod = 47.0;            // s, not a multiple of the corner period
constexpr double kCornerPeriod = 13.0;           // s
constexpr double kCornerLatAccel = 10.0;         // m/s² at a corner's apex
constexpr double kNoGripCornerLatAccel = 4.0;    // m/s², the least a pushing car corners with
constexpr double kNoGripExtraSteer = 0.35;       // rad beyond what the motion explains
constexpr double kSteerNoise = 0.01;             // rad, the driver's hands
constexpr double kTorquePerLatAccel = 0.75;      // Nm per m/s²
constexpr double kRoadAmplitude = 0.0015;        // m of shock movement

// Stretches of a 60-second cycle that must not count as grip.
constexpr double kUndersteerStart = 8.0, kUndersteerEnd = 11.0;
constexpr double kAbsStart = 20.0, kAbsEnd = 22.0;
constexpr double kSlideStart = 33.0, kSlideEnd = 35.0;
constexpr double kSlowStart = 50.0, kSlowEnd = 54.0;
constexpr double kCycle = 60.0;
constexpr double kSlowSpeed = 6.0;      // m/s
constexpr double kSlideRatio = 0.2;     // velocityY / velocityX
constexpr double kUndersteerExtra = 0.5;  // rad

bool Within(double t, double start, double end) { return t >= start && t < end; }

}  // namespace

TelemetryFrame GripDriveFrame(const CarBehaviour& behaviour, int64_t tick) {
    const double t = static_cast<double>(tick) / kTickRate;
    const double inCycle = std::fmod(t, kCycle);
    const bool slow = Within(inCycle, kSlowStart, kSlowEnd);
    const double speed = slow ? kSlowSpeed : kSpeedMid + kSpeedSwing * std::sin(2.0 * kPi * t / kSpeedPeriod);
    const double corner = std::sin(2.0 * kPi * t / kCornerPeriod);
    double latAccel = kCornerLatAccel * corner;
    if (!behaviour.grip) latAccel = std::copysign(kNoGripCornerLatAccel + std::fabs(latAccel), corner);
    const double curvature = latAccel / (speed * speed);
    const double yawRate = speed * curvature;
    const double explained = behaviour.yawRateMultiplier * yawRate / speed + latAccel / behaviour.lateralAccelDivisor;
    double angle = explained + kSteerNoise * std::sin(t * 37.0);
    double velocityY = 0.0;
    if (!behaviour.grip) angle = explained * 1.6 + std::copysign(kNoGripExtraSteer, explained);
    if (Within(inCycle, kUndersteerStart, kUndersteerEnd)) angle += std::copysign(kUndersteerExtra, explained);
    if (Within(inCycle, kAbsStart, kAbsEnd)) angle += 0.3;
    if (Within(inCycle, kSlideStart, kSlideEnd)) {
        velocityY = kSlideRatio * speed;
        angle = -0.5 * explained;
    }
    if (slow) angle = 1.5 * std::sin(t);

    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.tickCount = static_cast<int32_t>(tick);
    frame.speed = static_cast<float>(speed);
    frame.velocityX = static_cast<float>(speed);
    frame.velocityY = static_cast<float>(velocityY);
    frame.latAccel = static_cast<float>(latAccel);
    frame.yawRate = static_cast<float>(yawRate);
    frame.steeringWheelAngle = static_cast<float>(angle);
    frame.steeringWheelAngleMax = kSteeringAngleMax;
    frame.brakeAbsActive = Within(inCycle, kAbsStart, kAbsEnd) ? 1 : 0;
    frame.steeringWheelTorque = static_cast<float>(kTorquePerLatAccel * latAccel);
    frame.torqueSampleCount = kMaxSubSamples;
    frame.shockSampleCount = kMaxSubSamples;
    for (int i = 0; i < kMaxSubSamples; ++i) {
        const double s = t + i / kSubSampleRate;
        frame.torqueSamples[i] = frame.steeringWheelTorque;
        frame.lfShockDeflSamples[i] = static_cast<float>(0.05 + kRoadAmplitude * std::sin(s * 2.0 * kPi * 23.0));
        frame.rfShockDeflSamples[i] = static_cast<float>(0.05 + kRoadAmplitude * std::sin(s * 2.0 * kPi * 31.0));
    }
    frame.lfShockDefl = frame.lfShockDeflSamples[kMaxSubSamples - 1];
    frame.rfShockDefl = frame.rfShockDeflSamples[kMaxSubSamples - 1];
    return frame;
}

std::vector<TelemetryFrame> MakeGripDrive(const CarBehaviour& behaviour, double seconds) {
    std::vector<TelemetryFrame> frames;
    const int64_t ticks = static_cast<int64_t>(seconds * kTickRate);
    frames.reserve(static_cast<size_t>(ticks));
    for (int64_t tick = 0; tick < ticks; ++tick) frames.push_back(GripDriveFrame(behaviour, tick));
    return frames;
}

}  // namespace veltor::sim
