#include "engine/AbsVibration.h"

#include <algorithm>
#include <cmath>

namespace veltor {
namespace {

constexpr float kAbsFrequencyTerm = 219.9115f;      // rad/s, 35 Hz
constexpr float kAbsFullAmplitude = 20.0f;          // Nm at 100 percent
constexpr float kTwoPi = 6.2831855f;
constexpr float kTelemetryOutputRate = 360.0f;      // outputs per second without interpolation
constexpr float kInterpolatedOutputRate = 720.0f;

}  // namespace

void FillAbsVibration(const TelemetryFrame& frame, const EngineSettings& settings, bool interpolate, int outputs,
                      float& absPhase, float (&vibration)[kMaxOutputsPerTick]) {
    if (frame.brakeAbsActive == 0 || settings.AbsVibration <= 0) {
        absPhase = 0.0f;
        return;
    }
    const float amplitude = static_cast<float>(std::min(settings.AbsVibration, 100)) * kAbsFullAmplitude / 100.0f;
    const float step = kAbsFrequencyTerm / (interpolate ? kInterpolatedOutputRate : kTelemetryOutputRate);
    const int count = std::clamp(outputs, 0, kMaxOutputsPerTick);
    for (int i = 0; i < count; ++i) {
        // The sine alone is taken in double precision, then narrowed before the multiplication.
        vibration[i] = static_cast<float>(std::sin(static_cast<double>(absPhase))) * amplitude;
        absPhase += step;
        if (absPhase >= kTwoPi) absPhase -= kTwoPi;
    }
}

}  // namespace veltor
