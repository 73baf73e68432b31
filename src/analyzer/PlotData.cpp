#include "analyzer/PlotData.h"

#include <algorithm>
#include <cmath>

#include "analyzer/RecordingAnalysis.h"

namespace veltor::analyzer {

TimeWindow VisibleWindow(double durationSeconds, int32_t spanPercent, int32_t positionPerMille) {
    const double duration = std::max(0.0, durationSeconds);
    const double span = duration * std::clamp(spanPercent, kSpanPercentLowest, kSpanPercentHighest) / 100.0;
    // Not below 0: the span of the whole recording may come out a rounding above its duration.
    const double from = std::max(0.0, (duration - span) * std::clamp(positionPerMille, 0, kPositionHighest) / kPositionHighest);
    return {from, from + span};
}

std::vector<PlotBucket> DecimateForPlot(const std::vector<RecordingSample>& samples,
                                        float RecordingSample::*field, size_t buckets, TimeWindow window) {
    std::vector<PlotBucket> plot;
    const double length = window.to - window.from;
    if (samples.empty() || buckets == 0 || !(length >= 0.0)) return plot;
    const double width = length > 0.0 ? length / static_cast<double>(buckets) : 1.0;
    // Indexed by slice, so a file whose times fall still plots in time order.
    std::vector<PlotBucket> slices(buckets);
    std::vector<bool> used(buckets, false);
    for (const RecordingSample& s : samples) {
        const double t = SecondsFromStart(samples, s);
        if (t < window.from || t > window.to) continue;
        const size_t slice = static_cast<size_t>(std::min((t - window.from) / width, static_cast<double>(buckets - 1)));
        const float value = s.*field;
        if (!used[slice]) {
            slices[slice] = {window.from + static_cast<double>(slice) * width, value, value};
            used[slice] = true;
            continue;
        }
        slices[slice].lowest = std::min(slices[slice].lowest, value);
        slices[slice].highest = std::max(slices[slice].highest, value);
    }
    for (size_t i = 0; i < buckets; ++i) {
        if (used[i]) plot.push_back(slices[i]);
    }
    return plot;
}

std::vector<size_t> FullScaleHistogram(const std::vector<RecordingSample>& samples) {
    std::vector<size_t> bins(kHistogramBins, 0);
    for (const RecordingSample& s : samples) {
        if (!(s.fullScaleTorque > 0.0f)) continue;
        const double share = std::fabs(s.mixedTorque) / s.fullScaleTorque;
        const double position = share / kHistogramTopShare * static_cast<double>(kHistogramBins);
        ++bins[static_cast<size_t>(std::min(position, static_cast<double>(kHistogramBins - 1)))];
    }
    return bins;
}

}  // namespace veltor::analyzer
