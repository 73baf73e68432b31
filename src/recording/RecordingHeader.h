#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltor {

constexpr size_t kRecordingTextField = 64;  // bytes of UTF-8, the last always NUL

// The recording file's header, written as it lies in memory. Packed to 4 so the 64-bit start time does
// not round the record up from 380 to 384 bytes.
#pragma pack(push, 4)
struct RecordingHeader {
    char magic[8] = {};
    uint32_t version = 0;
    uint32_t headerSize = 0;
    uint32_t recordSize = 0;
    uint32_t tickRate = 0;
    uint64_t startTimeMs = 0;  // wall clock, ms since 1970-01-01 UTC
    char carPath[kRecordingTextField] = {};
    char driverName[kRecordingTextField] = {};
    char profileName[kRecordingTextField] = {};
    int32_t ForceStrength = 0;
    int32_t Bumps = 0;
    int32_t BumpImpacts = 0;
    int32_t UndersteerResistance = 0;
    int32_t SuspensionDetailPriority = 0;
    int32_t CarForceBalance = 0;
    float YawRateMultiplier = 0.0f;
    float LateralAccelDivisor = 0.0f;
    float ResistanceGain = 0.0f;
    float SteerMarginBias = 0.0f;
    float wheelbaseMaxTorque = 0.0f;  // Nm
    int32_t AbsVibration = 0;
    float YawSteerGain = 0.0f;
    uint8_t reserved[104] = {};
};
#pragma pack(pop)

constexpr uint32_t kRecordingHeaderSize = 380;

static_assert(sizeof(RecordingHeader) == kRecordingHeaderSize);
static_assert(offsetof(RecordingHeader, magic) == 0);
static_assert(offsetof(RecordingHeader, version) == 8);
static_assert(offsetof(RecordingHeader, headerSize) == 12);
static_assert(offsetof(RecordingHeader, recordSize) == 16);
static_assert(offsetof(RecordingHeader, tickRate) == 20);
static_assert(offsetof(RecordingHeader, startTimeMs) == 24);
static_assert(offsetof(RecordingHeader, carPath) == 32);
static_assert(offsetof(RecordingHeader, driverName) == 96);
static_assert(offsetof(RecordingHeader, profileName) == 160);
static_assert(offsetof(RecordingHeader, ForceStrength) == 224);
static_assert(offsetof(RecordingHeader, Bumps) == 228);
static_assert(offsetof(RecordingHeader, BumpImpacts) == 232);
static_assert(offsetof(RecordingHeader, UndersteerResistance) == 236);
static_assert(offsetof(RecordingHeader, SuspensionDetailPriority) == 240);
static_assert(offsetof(RecordingHeader, CarForceBalance) == 244);
static_assert(offsetof(RecordingHeader, YawRateMultiplier) == 248);
static_assert(offsetof(RecordingHeader, LateralAccelDivisor) == 252);
static_assert(offsetof(RecordingHeader, ResistanceGain) == 256);
static_assert(offsetof(RecordingHeader, SteerMarginBias) == 260);
static_assert(offsetof(RecordingHeader, wheelbaseMaxTorque) == 264);
static_assert(offsetof(RecordingHeader, AbsVibration) == 268);
static_assert(offsetof(RecordingHeader, YawSteerGain) == 272);
static_assert(offsetof(RecordingHeader, reserved) == 276);

// A header with the format's own fields (magic, version, sizes, tick rate) and the start time; the rest zero.
RecordingHeader NewRecordingHeader(uint64_t startTimeMs);

// A text field: zero-filled, then as much of `text` in UTF-8 as fits, the last byte always NUL, so a long
// text may be cut inside a character. An empty text leaves the field all zero.
void FillRecordingText(std::wstring_view text, char (&field)[kRecordingTextField]);

// Wall-clock milliseconds since 1970-01-01 UTC.
uint64_t WallClockMilliseconds();

}  // namespace veltor
