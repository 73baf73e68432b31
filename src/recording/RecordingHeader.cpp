#include "recording/RecordingHeader.h"

#include <chrono>
#include <cstring>

#include "recording/RecordingSample.h"
#include "platform/TextConversion.h"

namespace veltor {
namespace {

constexpr char kMagic[8] = "VTRREC1";
constexpr uint32_t kFormatVersion = 2;
constexpr uint32_t kRecordedTickRate = 60;  // always; the simulator's own rate is not consulted

}  // namespace

RecordingHeader NewRecordingHeader(uint64_t startTimeMs) {
    RecordingHeader header;
    std::memcpy(header.magic, kMagic, sizeof header.magic);
    header.version = kFormatVersion;
    header.headerSize = kRecordingHeaderSize;
    header.recordSize = kRecordingSampleSize;
    header.tickRate = kRecordedTickRate;
    header.startTimeMs = startTimeMs;
    return header;
}

// The conversion may stop anywhere, even inside a character, so the last byte is forced to NUL.
void FillRecordingText(std::wstring_view text, char (&field)[kRecordingTextField]) {
    std::memset(field, 0, sizeof field);
    if (text.empty()) return;
    ConvertWideToUtf8(text, field, sizeof field);
    field[kRecordingTextField - 1] = '\0';
}

uint64_t WallClockMilliseconds() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

}  // namespace veltor
