#pragma once
#include <cstdint>

namespace veltor {

constexpr int kMaxSubSamples = 6;

// One sample of the simulator's variables. Every field is zero in a frame that was never filled.
struct TelemetryFrame {
    uint8_t valid = 0;
    uint8_t isOnTrack = 0;
    int32_t tickCount = 0;
    float speed = 0.0f;
    float steeringWheelTorque = 0.0f;
    float steeringWheelAngle = 0.0f;
    float steeringWheelAngleMax = 0.0f;
    float velocityX = 0.0f;
    float velocityY = 0.0f;
    float longAccel = 0.0f;
    float latAccel = 0.0f;
    float yawRate = 0.0f;
    uint8_t brakeAbsActive = 0;
    float lfShockDefl = 0.0f;
    float rfShockDefl = 0.0f;
    float cfShockDefl = 0.0f;
    float lfShockDeflSamples[kMaxSubSamples] = {};
    float rfShockDeflSamples[kMaxSubSamples] = {};
    float cfShockDeflSamples[kMaxSubSamples] = {};
    float torqueSamples[kMaxSubSamples] = {};
    int32_t torqueSampleCount = 0;
    int32_t shockSampleCount = 0;
    int32_t cfShockSampleCount = 0;

    bool operator==(const TelemetryFrame&) const = default;
};

}  // namespace veltor
