#include "engine/RoadTexture.h"

#include <algorithm>
#include <cmath>

#include "engine/BaseSignal.h"

namespace veltor {
namespace {

constexpr float kTextureCrossoverMetres = 0.0035f;  // road and impact parts weigh the same here
constexpr float kTextureGainFactor = 1.6f;          // Nm per metre per slider step squared
constexpr float kTextureSpeedGate = 2.0f;           // m/s; at or below, no texture
constexpr float kAbsFrequencyTerm = 219.9115f;      // rad/s, 35 Hz
constexpr float kAbsFullAmplitude = 20.0f;          // Nm at 100 percent
constexpr float kTwoPi = 6.2831855f;
constexpr float kTelemetryOutputRate = 360.0f;      // outputs per second without interpolation
constexpr float kInterpolatedOutputRate = 720.0f;
constexpr float kTextureFloor = 0.1f;               // Nm; a smaller texture is simply added
constexpr float kOppositionShare = 0.06f;           // of full scale
constexpr float kOppositionMinimum = 2.5f;          // Nm
constexpr float kChangeThreshold = 0.0001f;         // Nm; a smaller change is no action

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

void FillAbsVibration(const TelemetryFrame& frame, const EngineSettings& settings, bool interpolate, int outputs,
                      float& absPhase, float (&vibration)[12]) {
    if (frame.brakeAbsActive == 0 || settings.AbsVibration <= 0) {
        absPhase = 0.0f;
        return;
    }
    const float amplitude = static_cast<float>(std::min(settings.AbsVibration, 100)) * kAbsFullAmplitude / 100.0f;
    const float step = kAbsFrequencyTerm / (interpolate ? kInterpolatedOutputRate : kTelemetryOutputRate);
    const int count = std::clamp(outputs, 0, 12);
    for (int i = 0; i < count; ++i) {
        // The sine alone is taken in double precision, then narrowed before the multiplication.
        vibration[i] = static_cast<float>(std::sin(static_cast<double>(absPhase))) * amplitude;
        absPhase += step;
        if (absPhase >= kTwoPi) absPhase -= kTwoPi;
    }
}

float MixForce(const EngineSettings& settings, float base, float resistance, float texture, float other,
               bool* priorityActed) {
    if (priorityActed != nullptr) *priorityActed = false;
    if (settings.SuspensionDetailPriority <= 0 || std::fabs(texture) < kTextureFloor) {
        return ((base + resistance) + texture) + other;
    }
    const float fullScale = FullScaleTorque(settings);
    const float p = static_cast<float>(std::min(settings.SuspensionDetailPriority, 100));
    const float main = base + other;
    const float sum = main + resistance;
    bool acted = false;
    float result = 0.0f;
    if (sum * texture < 0.0f) {
        // The texture pulls against the force: duck the force so the texture can be felt.
        if (std::fabs(texture) < std::max(fullScale * kOppositionShare, kOppositionMinimum)) return sum + texture;
        const float duck = std::min((p / 100.0f * 1.1f + 0.55f) * std::fabs(texture), std::fabs(sum));
        const float reduced = std::copysign(std::fabs(sum) - duck, sum);
        acted = duck > kChangeThreshold;
        result = reduced + texture;
    } else {
        // The texture pulls along: keep headroom for it by giving up resistance, never more.
        if (std::fabs(resistance) <= kChangeThreshold) return sum + texture;
        if (fullScale >= std::fabs(sum) + std::fabs(texture)) return sum + texture;
        const float reserve = std::min(fullScale, (p / 50.0f + 1.0f) * std::fabs(texture));
        const float room = std::max(fullScale - reserve, 0.0f);
        const float wanted = std::clamp(sum, -room, room) - main;
        const float kept = resistance > 0.0f ? std::max(std::min(resistance, wanted), 0.0f)
                                             : std::max(std::min(0.0f, wanted), resistance);
        acted = std::fabs(kept - resistance) > kChangeThreshold;
        result = (kept + main) + texture;
    }
    if (priorityActed != nullptr) *priorityActed = acted;
    return result;
}

}  // namespace veltor
