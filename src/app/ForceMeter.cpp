#include "app/ForceMeter.h"

#include <algorithm>
#include <cwchar>

#include "engine/OutputStage.h"

namespace veltor {
namespace {

constexpr uint64_t kTenthsOfPercent = 1000;

float OfFullScale(int32_t magnitude) { return static_cast<float>(magnitude) / kFullScaleUnits; }

bool Since(int64_t at, int64_t now, int64_t window) { return at != INT64_MIN && now - at < window; }

}  // namespace

void ForceMeter::Take(const OutputFigures& figures, int64_t now) {
    looks[nextLook] = {now, figures.peak};
    nextLook = (nextLook + 1) % kLooks;
    if (figures.peak >= markPeak || !Since(markSince, now, kMeterPeakHoldNs)) {
        markPeak = figures.peak;
        markSince = now;
    }
    if (figures.clipped > 0) lastClipAt = now;
    if (figures.outputs == 0) return;
    if (stintOver) stintOutputs = stintClipped = 0;
    stintOver = false;
    stintOutputs += figures.outputs;
    stintClipped += figures.clipped;
}

MeterReading ForceMeter::Reading(int64_t now) const {
    int32_t level = 0;
    for (const Look& look : looks) {
        if (look.at <= now && Since(look.at, now, kMeterLevelWindowNs)) level = std::max(level, look.peak);
    }
    MeterReading reading;
    reading.level = OfFullScale(level);
    reading.peak = OfFullScale(std::max(level, markPeak));
    reading.clipping = Since(lastClipAt, now, kMeterClipWindowNs);
    if (stintOutputs > 0) {
        // A figure taken between an output's two counts may run one ahead: held to 100 %.
        const uint64_t clipped = std::min(stintClipped, stintOutputs);
        reading.clipTenths = static_cast<int32_t>((clipped * kTenthsOfPercent * 2 + stintOutputs) / (stintOutputs * 2));
    }
    return reading;
}

std::wstring ClipText(int32_t tenths) {
    wchar_t text[32];
    std::swprintf(text, 32, L"clip %d.%d %%", tenths / 10, tenths % 10);
    return text;
}

}  // namespace veltor
