#include "engine/OutputStage.h"

#include <algorithm>
#include <cmath>

#include "engine/FfbEngine.h"

namespace veltor {
namespace {

constexpr int32_t kParkedDivisor = 4;  // parked cars get a quarter of the force
constexpr float kMinForceUnitsPerStep = 100.0f;  // output units per step of MinForce
constexpr float kKneeOffsetUnits = 400.0f;
constexpr float kKneeCeilingUnits = static_cast<float>(kHandOverLimit);
constexpr float kDefaultFullScaleTorque = 40.0f;  // Nm at full scale with the default strength
constexpr float kDefaultStrength = 50.0f;
constexpr float kMaxCurveSlope = 3.0f;

// The low-force curve: a cubic Hermite from (0, 0) with slope k to (1, 1) with slope 1, below the knee.
int32_t LowForceCurve(int32_t value, int32_t minForce) {
    const float a = std::fabs(static_cast<float>(value));
    const float m = static_cast<float>(minForce) * kMinForceUnitsPerStep;
    const float knee = std::min(std::max(m + kKneeOffsetUnits, 2.0f * m), kKneeCeilingUnits);
    if (a >= knee) return value;
    const float t = a / knee;
    const float k = std::min(static_cast<float>(minForce) / 10.0f + 1.0f, kMaxCurveSlope);
    const float t2 = t * t;
    const float t3 = t2 * t;
    const float h = (t3 - 2.0f * t2 + t) * k + (3.0f * t2 - 2.0f * t3) + (t3 - t2);
    const float y = std::max(h * knee, a);
    const int32_t rounded = static_cast<int32_t>(std::round(y));  // halves away from zero
    return value < 0 ? -rounded : rounded;
}

}  // namespace

float FullScaleTorque(int32_t forceStrength) {
    return kDefaultFullScaleTorque * kDefaultStrength / static_cast<float>(std::max(forceStrength, 1));
}

float FullScaleTorque(const EngineSettings& settings) { return FullScaleTorque(settings.ForceStrength); }

int32_t ToOutputUnits(float force, const EngineSettings& settings) {
    if (settings.ForceStrength <= 0) return 0;
    const float r = (force / kDefaultFullScaleTorque) * (static_cast<float>(settings.ForceStrength) / kDefaultStrength) *
                    kFullScaleUnits;
    // A value beyond the i32 range (or NaN from a broken frame) has no defined truncation; pin it.
    if (std::isnan(r)) return 0;
    if (r >= 2147483520.0f) return 2147483520;
    if (r <= -2147483520.0f) return -2147483520;
    return static_cast<int32_t>(r);
}

int32_t ShapeOutput(int32_t value, bool parked, const EngineSettings& settings) {
    if (parked && settings.ReduceForceWhenParked) return value / kParkedDivisor;
    if (settings.MinForce <= 0 || value == 0) return value;
    return LowForceCurve(value, settings.MinForce);
}

// Clipping is measured before the parked reduction and the low-force curve, the output after them.
int32_t FfbEngine::CountOutput(float force, bool parked, const EngineSettings& tickSettings) {
    const int32_t v = ToOutputUnits(force, tickSettings);
    const bool clipped = v > kHandOverLimit || v < -kHandOverLimit;
    ++clipSamples;
    if (clipped) ++clipOver;
    const int32_t c = std::clamp(v, -kHandOverLimit, kHandOverLimit);
    const int32_t s = ShapeOutput(c, parked, tickSettings);
    ++outSamples;
    if (s != 0) ++outNonZero;
    outPeak = std::max(outPeak, s < 0 ? -s : s);
    const int32_t handed = std::clamp(s, -kHandOverLimit, kHandOverLimit);
    CountForMeter(handed < 0 ? -handed : handed, clipped);
    return handed;
}

// Adds rather than stores, since the GUI may zero a figure between two outputs and a plain store would undo
// that; the peak rises by compare-exchange, which sees such a zero. No lock, no allocation.
void FfbEngine::CountForMeter(int32_t magnitude, bool clipped) {
    meterOutputs.fetch_add(1, std::memory_order_relaxed);
    if (clipped) meterClipped.fetch_add(1, std::memory_order_relaxed);
    int32_t peak = meterPeak.load(std::memory_order_relaxed);
    while (magnitude > peak && !meterPeak.compare_exchange_weak(peak, magnitude, std::memory_order_relaxed)) {
    }
}

OutputFigures FfbEngine::TakeOutputFigures() {
    return {meterPeak.exchange(0, std::memory_order_relaxed), meterOutputs.exchange(0, std::memory_order_relaxed),
            meterClipped.exchange(0, std::memory_order_relaxed)};
}

void FfbEngine::ReportClipping() {
    const float percent = clipSamples >= 1
                              ? static_cast<float>(clipOver) * 100.0f / static_cast<float>(clipSamples)
                              : 0.0f;
    {
        std::lock_guard guard(statusLock);
        ++status.clipReportCount;
        status.clippedPercent = percent;
    }
    clipSamples = 0;
    clipOver = 0;
}

void FfbEngine::ReportOutput() {
    std::lock_guard guard(statusLock);
    ++status.outputReportCount;
    status.outputReportSamples = static_cast<uint32_t>(outSamples);
    status.outputReportNonZero = static_cast<uint32_t>(outNonZero);
    status.outputReportPeak = outPeak;
    outSamples = 0;
    outNonZero = 0;
    outPeak = 0;
}

}  // namespace veltor
