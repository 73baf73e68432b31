#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "recording/RecordingSample.h"

namespace veltor::analyzer {

constexpr size_t kHistogramBins = 24;
constexpr double kHistogramTopShare = 1.2;  // |mixed| / full scale; the last bin takes everything above

// The stretch of a recording a plot shows, in seconds from the first record.
struct TimeWindow {
    double from = 0.0;
    double to = 0.0;
};

// The view's two sliders: the share of the recording shown, in percent, and where that share starts, in
// thousandths of the part left over. Out-of-range values take the nearest end.
constexpr int32_t kSpanPercentLowest = 2;
constexpr int32_t kSpanPercentHighest = 100;
constexpr int32_t kPositionHighest = 1000;
TimeWindow VisibleWindow(double durationSeconds, int32_t spanPercent, int32_t positionPerMille);

// The lowest and highest value of one field over a slice of time, so a plot of any width shows every peak.
struct PlotBucket {
    double start = 0.0;  // seconds from the first record
    float lowest = 0.0f;
    float highest = 0.0f;
};

// `field` of the records inside `window`, in at most `buckets` equal slices of it, in time order; slices
// without a record are left out.
std::vector<PlotBucket> DecimateForPlot(const std::vector<RecordingSample>& samples,
                                        float RecordingSample::*field, size_t buckets, TimeWindow window);

// Records counted by |mixedTorque| / fullScaleTorque in kHistogramBins bins from 0 to kHistogramTopShare.
std::vector<size_t> FullScaleHistogram(const std::vector<RecordingSample>& samples);

}  // namespace veltor::analyzer
