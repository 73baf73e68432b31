#pragma once
#include <cstddef>
#include <vector>

#include "recording/RecordingSample.h"

namespace veltor::analyzer {

constexpr size_t kHistogramBins = 24;
constexpr double kHistogramTopShare = 1.2;  // |mixed| / full scale; the last bin takes everything above

// The lowest and highest value of one field over a slice of time, so a plot of any width shows every peak.
struct PlotBucket {
    double start = 0.0;  // seconds from the first record
    float lowest = 0.0f;
    float highest = 0.0f;
};

// `field` of the records in at most `buckets` equal slices of the recording's duration; slices without a
// record are left out.
std::vector<PlotBucket> DecimateForPlot(const std::vector<RecordingSample>& samples,
                                        float RecordingSample::*field, size_t buckets);

// Records counted by |mixedTorque| / fullScaleTorque in kHistogramBins bins from 0 to kHistogramTopShare.
std::vector<size_t> FullScaleHistogram(const std::vector<RecordingSample>& samples);

}  // namespace veltor::analyzer
