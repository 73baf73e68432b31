#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>

namespace veltor {

static_assert(std::endian::native == std::endian::little, "the recording file is little-endian");

// One record of the recording file: what one tick on track read and computed. Written to disk as it lies
// in memory, so its layout is the file's.
struct RecordingSample {
    uint64_t timeMicroseconds = 0;  // steady clock since the start of the recording
    int32_t tickCount = 0;
    float speed = 0.0f;
    float steeringWheelAngle = 0.0f;
    float steeringWheelTorque = 0.0f;
    float velocityX = 0.0f;
    float velocityY = 0.0f;
    float longAccel = 0.0f;
    float latAccel = 0.0f;
    float yawRate = 0.0f;
    float steerExcess = 0.0f;
    float understeerLoad = 0.0f;
    float baseTorque = 0.0f;        // Nm
    float resistanceTorque = 0.0f;  // Nm
    float textureTorque = 0.0f;     // Nm
    float correctionTorque = 0.0f;  // Nm
    float mixedTorque = 0.0f;       // Nm
    float fullScaleTorque = 0.0f;   // Nm that map to full output
    float crashGain = 1.0f;
    uint8_t clipped = 0;
    uint8_t priorityActed = 0;
    uint8_t absActive = 0;
    uint8_t reserved[5] = {};
};

constexpr uint32_t kRecordingSampleSize = 88;

static_assert(sizeof(RecordingSample) == kRecordingSampleSize);
static_assert(offsetof(RecordingSample, timeMicroseconds) == 0);
static_assert(offsetof(RecordingSample, tickCount) == 8);
static_assert(offsetof(RecordingSample, speed) == 12);
static_assert(offsetof(RecordingSample, steeringWheelAngle) == 16);
static_assert(offsetof(RecordingSample, steeringWheelTorque) == 20);
static_assert(offsetof(RecordingSample, velocityX) == 24);
static_assert(offsetof(RecordingSample, velocityY) == 28);
static_assert(offsetof(RecordingSample, longAccel) == 32);
static_assert(offsetof(RecordingSample, latAccel) == 36);
static_assert(offsetof(RecordingSample, yawRate) == 40);
static_assert(offsetof(RecordingSample, steerExcess) == 44);
static_assert(offsetof(RecordingSample, understeerLoad) == 48);
static_assert(offsetof(RecordingSample, baseTorque) == 52);
static_assert(offsetof(RecordingSample, resistanceTorque) == 56);
static_assert(offsetof(RecordingSample, textureTorque) == 60);
static_assert(offsetof(RecordingSample, correctionTorque) == 64);
static_assert(offsetof(RecordingSample, mixedTorque) == 68);
static_assert(offsetof(RecordingSample, fullScaleTorque) == 72);
static_assert(offsetof(RecordingSample, crashGain) == 76);
static_assert(offsetof(RecordingSample, clipped) == 80);
static_assert(offsetof(RecordingSample, priorityActed) == 81);
static_assert(offsetof(RecordingSample, absActive) == 82);
static_assert(offsetof(RecordingSample, reserved) == 83);

}  // namespace veltor
