#include "analyzer/RecordingAnalysis.h"

#include <algorithm>
#include <cmath>

namespace veltor::analyzer {
namespace {

constexpr double kRecordSeconds = 1.0 / 60.0;

// Nearest-rank percentile; reorders `values`.
float Percentile(std::vector<float>& values, double percent) {
    if (values.empty()) return 0.0f;
    const double rank = std::ceil(percent / 100.0 * static_cast<double>(values.size()));
    const size_t index = static_cast<size_t>(std::clamp(rank, 1.0, static_cast<double>(values.size()))) - 1;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(index), values.end());
    return values[index];
}

double Percent(size_t part, size_t whole) {
    return whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0.0;
}

// The stretches of time over which `marked` holds, each record counting for one 60 Hz tick.
template <class Predicate>
std::vector<TimeStretch> MarkedStretches(const std::vector<RecordingSample>& samples, Predicate marked) {
    std::vector<TimeStretch> stretches;
    for (const RecordingSample& sample : samples) {
        if (!marked(sample)) continue;
        const double t = SecondsFromStart(samples, sample);
        if (!stretches.empty() && t - stretches.back().end <= kStretchJoinSeconds) {
            stretches.back().end = std::max(stretches.back().end, t + kRecordSeconds);
        } else {
            stretches.push_back({t, t + kRecordSeconds});
        }
    }
    return stretches;
}

std::vector<TimeStretch> Gaps(const std::vector<RecordingSample>& samples) {
    std::vector<TimeStretch> gaps;
    for (size_t i = 1; i < samples.size(); ++i) {
        const double before = SecondsFromStart(samples, samples[i - 1]);
        const double after = SecondsFromStart(samples, samples[i]);
        if (after - before > kGapSeconds) gaps.push_back({before, after});
    }
    return gaps;
}

ClippingFindings FindClipping(const Recording& recording) {
    const std::vector<RecordingSample>& samples = recording.samples;
    ClippingFindings found;
    std::vector<float> magnitudes;
    magnitudes.reserve(samples.size());
    for (const RecordingSample& s : samples) {
        if (s.clipped != 0) ++found.clippedRecords;
        magnitudes.push_back(std::fabs(s.mixedTorque));
    }
    found.clippedPercent = Percent(found.clippedRecords, samples.size());
    found.stretches = MarkedStretches(samples, [](const RecordingSample& s) { return s.clipped != 0; });
    found.peakTorque = Percentile(magnitudes, kPeakPercentile);
    found.fullScaleTorque = FullScaleTorque(recording.header.ForceStrength);
    found.peakPercentOfFullScale = 100.0 * found.peakTorque / found.fullScaleTorque;
    return found;
}

TextureFindings FindTexture(const std::vector<RecordingSample>& samples) {
    TextureFindings found;
    std::vector<float> texture;
    std::vector<float> base;
    for (const RecordingSample& s : samples) {
        const bool textured = std::fabs(s.textureTorque) >= kTextureFloorTorque;
        if (textured) ++found.texturedRecords;
        if (s.priorityActed != 0) ++found.priorityActedRecords;
        if (textured && s.clipped != 0) ++found.clippedWithTexture;
        if (s.speed > kMovingSpeed) {
            texture.push_back(std::fabs(s.textureTorque));
            base.push_back(std::fabs(s.baseTorque));
        }
    }
    found.priorityActedPercent = Percent(found.priorityActedRecords, samples.size());
    found.movingRecords = texture.size();
    found.texturePeak = Percentile(texture, kTexturePercentile);
    found.basePeak = Percentile(base, kTexturePercentile);
    found.texturePercentOfBase = found.basePeak > 0.0f ? 100.0 * found.texturePeak / found.basePeak : 0.0;
    return found;
}

}  // namespace

double SecondsFromStart(const std::vector<RecordingSample>& samples, const RecordingSample& sample) {
    if (samples.empty() || sample.timeMicroseconds <= samples.front().timeMicroseconds) return 0.0;
    return static_cast<double>(sample.timeMicroseconds - samples.front().timeMicroseconds) / 1e6;
}

Analysis AnalyseRecording(const Recording& recording) {
    const std::vector<RecordingSample>& samples = recording.samples;
    Analysis analysis;
    analysis.records = samples.size();
    for (const RecordingSample& s : samples) {
        analysis.durationSeconds = std::max(analysis.durationSeconds, SecondsFromStart(samples, s));
    }
    analysis.clipping = FindClipping(recording);
    analysis.texture = FindTexture(samples);
    analysis.fit = FitCarCoefficients(samples, recording.header);
    analysis.absStretches = MarkedStretches(samples, [](const RecordingSample& s) { return s.absActive != 0; });
    analysis.crashHoldStretches =
        MarkedStretches(samples, [](const RecordingSample& s) { return s.crashGain < 1.0f; });
    analysis.gaps = Gaps(samples);
    return analysis;
}

}  // namespace veltor::analyzer
