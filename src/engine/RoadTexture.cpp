#include "engine/RoadTexture.h"

#include <algorithm>
#include <cmath>

namespace veltor {
namespace {

constexpr float kTextureCrossoverMetres = 0.0035f;  // road and impact parts weigh the same here
constexpr float kTextureGainFactor = 1.6f;          // Nm per metre per slider step squared
constexpr float kTextureSpeedGate = 2.0f;           // m/s; at or below, no texture

float SliderGain(int32_t slider) {
    const float value = static_cast<float>(slider);
    return slider > 0 ? value * value * kTextureGainFactor : 0.0f;
}

// Movement of sub-sample `k` against the one before it; the first compares with the previous frame's newest.
float SampleMovement(const float* samples, float previousNewest, int k) {
    return samples[k] - (k == 0 ? previousNewest : samples[k - 1]);
}

}  // namespace

float ComputeTexture(float movement, const EngineSettings& settings) {
    if (movement == 0.0f) return 0.0f;
    const float q = std::fabs(movement) / kTextureCrossoverMetres;
    const float r = q * q;
    const float w = r / (r + 1.0f);
    const float roadGain = SliderGain(settings.Bumps);
    const float impactGain = SliderGain(settings.BumpImpacts);
    return roadGain * ((1.0f - w) * movement) + (w * movement) * impactGain;
}

float SubSampleTexture(const TelemetryFrame& frame, const TelemetryFrame& previousFrame, int i,
                       const EngineSettings& settings) {
    if (settings.Bumps <= 0 && settings.BumpImpacts <= 0) return 0.0f;
    if (!(frame.speed > kTextureSpeedGate) || previousFrame.valid == 0) return 0.0f;
    float movement = 0.0f;
    if (frame.shockSampleCount > 0) {
        const int k = std::min(i, frame.shockSampleCount - 1);
        movement = SampleMovement(frame.lfShockDeflSamples, previousFrame.lfShockDefl, k) -
                   SampleMovement(frame.rfShockDeflSamples, previousFrame.rfShockDefl, k);
    } else if (frame.cfShockSampleCount > 0) {
        const int k = std::min(i, frame.cfShockSampleCount - 1);
        movement = SampleMovement(frame.cfShockDeflSamples, previousFrame.cfShockDefl, k);
    } else {
        return 0.0f;
    }
    return ComputeTexture(movement, settings);
}

}  // namespace veltor
