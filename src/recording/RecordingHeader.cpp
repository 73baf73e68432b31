#include "recording/RecordingHeader.h"

#include <chrono>
#include <cstring>

#include "recording/RecordingSample.h"
#include "recording/WideToUtf8.h"

namespace veltor {
namespace {

constexpr char kMagic[8] = "VTRREC1";
constexpr uint32_t kFormatVersion = 2;
constexpr uint32_t kRecordedTickRate = 60;  // always; the simulator's own rate is not consulted

// Zero-filled; an empty text stays all zero. The conversion may stop anywhere, even inside a character,
// so the last byte is forced to NUL whatever it did.
void FillTextField(std::wstring_view text, char (&field)[kRecordingTextField]) {
    std::memset(field, 0, sizeof field);
    if (text.empty()) return;
    ConvertWideToUtf8(text, field, sizeof field);
    field[kRecordingTextField - 1] = '\0';
}

}  // namespace

RecordingHeader MakeRecordingHeader(std::wstring_view carPath, std::wstring_view driverName,
                                    std::wstring_view profileName, const EngineSettings& settings, const CarRow& row,
                                    uint64_t startTimeMs) {
    RecordingHeader header;
    std::memcpy(header.magic, kMagic, sizeof header.magic);
    header.version = kFormatVersion;
    header.headerSize = kRecordingHeaderSize;
    header.recordSize = kRecordingSampleSize;
    header.tickRate = kRecordedTickRate;
    header.startTimeMs = startTimeMs;
    FillTextField(carPath, header.carPath);
    FillTextField(driverName, header.driverName);
    FillTextField(profileName, header.profileName);
    header.ForceStrength = settings.ForceStrength;
    header.Bumps = settings.Bumps;
    header.BumpImpacts = settings.BumpImpacts;
    header.UndersteerResistance = settings.UndersteerResistance;
    header.SuspensionDetailPriority = settings.SuspensionDetailPriority;
    header.CarForceBalance = settings.CarForceBalance;
    header.YawRateMultiplier = row.YawRateMultiplier;
    header.LateralAccelDivisor = row.LateralAccelDivisor;
    header.ResistanceGain = row.ResistanceGain;
    header.SteerMarginBias = row.SteerMarginBias;
    header.wheelbaseMaxTorque = static_cast<float>(settings.WheelbaseMaxTorqueTenths) / 10.0f;
    header.AbsVibration = settings.AbsVibration;
    header.YawSteerGain = row.YawSteerGain;
    return header;
}

uint64_t WallClockMilliseconds() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

}  // namespace veltor
