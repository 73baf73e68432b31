#include "analyzer/PlotData.h"

#include <algorithm>
#include <cmath>

#include "analyzer/RecordingAnalysis.h"

namespace veltor::analyzer {

std::vector<PlotBucket> DecimateForPlot(const std::vector<RecordingSample>& samples,
                                        float RecordingSample::*field, size_t buckets) {
    std::vector<PlotBucket> plot;
    if (samples.empty() || buckets == 0) return plot;
    double duration = 0.0;
    for (const RecordingSample& s : samples) duration = std::max(duration, SecondsFromStart(samples, s));
    const double width = duration > 0.0 ? duration / static_cast<double>(buckets) : 1.0;
    size_t current = buckets;  // none yet
    for (const RecordingSample& s : samples) {
        const double t = SecondsFromStart(samples, s);
        const size_t bucket = static_cast<size_t>(std::min(t / width, static_cast<double>(buckets - 1)));
        const float value = s.*field;
        if (bucket != current || plot.empty()) {
            plot.push_back({static_cast<double>(bucket) * width, value, value});
            current = bucket;
            continue;
        }
        plot.back().lowest = std::min(plot.back().lowest, value);
        plot.back().highest = std::max(plot.back().highest, value);
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
