#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "engine/EngineStatus.h"

namespace veltor {

// Steady-clock nanoseconds.
inline constexpr int64_t kMeterLevelWindowNs = 100'000'000;  // the bar: the highest output of this long
inline constexpr int64_t kMeterPeakHoldNs = 1'000'000'000;   // the peak mark stays this long
inline constexpr int64_t kMeterClipWindowNs = 250'000'000;   // red while an output of this long clipped

// What the status strip's meter shows at one moment.
struct MeterReading {
    float level = 0.0f;      // of full scale
    float peak = 0.0f;       // of full scale, never below the level
    bool clipping = false;
    int32_t clipTenths = 0;  // the stint's clipped outputs, tenths of a percent
};

// The live force meter's arithmetic, over the figures the GUI takes from the engine (at 30 Hz on track, at
// the status timer otherwise). A stint begins with the first output after EndStint. GUI thread only.
class ForceMeter {
public:
    void Take(const OutputFigures& figures, int64_t now);
    // The stint is over: the figure of its clipping stays until the next output begins another.
    void EndStint() { stintOver = true; }
    void Reset() { *this = ForceMeter(); }
    MeterReading Reading(int64_t now) const;

private:
    struct Look {
        int64_t at = INT64_MIN;
        int32_t peak = 0;
    };
    static constexpr size_t kLooks = 8;  // more than 100 ms of looks at 30 Hz and the timer

    std::array<Look, kLooks> looks{};  // a ring, the newest before nextLook
    size_t nextLook = 0;
    int32_t markPeak = 0;
    int64_t markSince = INT64_MIN;
    int64_t lastClipAt = INT64_MIN;
    bool stintOver = true;
    uint64_t stintOutputs = 0;
    uint64_t stintClipped = 0;
};

// "clip 1.2 %"
std::wstring ClipText(int32_t tenths);

}  // namespace veltor
