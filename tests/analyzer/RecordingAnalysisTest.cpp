// Findings over made-up records whose answers are known: percentiles, stretches, gaps, plot data, the date.
#include <gtest/gtest.h>

#include "AnalyzerTestFiles.h"
#include "analyzer/AnalysisReport.h"
#include "analyzer/PlotData.h"
#include "analyzer/RecordingAnalysis.h"

namespace veltor::analyzer {
namespace {

TEST(AnalyseRecording, FindsClippingPeakStretchesAndGaps) {
    Recording recording;
    recording.header = test::SampleHeader();  // ForceStrength 50: 40 Nm full scale
    recording.samples = test::SampleRecords(1000);
    for (size_t i = 0; i < 1000; ++i) {
        RecordingSample& s = recording.samples[i];
        s.mixedTorque = (i % 2 == 0 ? 0.05f : -0.05f) * static_cast<float>(i);  // |mixed| 0 to 49.95 Nm
        s.clipped = (i >= 100 && i < 110) || i == 500 ? 1 : 0;
        s.absActive = i >= 200 && i < 230 ? 1 : 0;
        s.crashGain = i >= 300 && i < 390 ? 0.05f : 1.0f;
        if (i >= 700) s.timeMicroseconds += 2000000;  // two seconds with no record
    }
    const Analysis a = AnalyseRecording(recording);
    EXPECT_EQ(a.records, 1000u);
    EXPECT_NEAR(a.durationSeconds, 999 * 0.016667 + 2.0, 1e-3);
    EXPECT_EQ(a.clipping.clippedRecords, 11u);
    EXPECT_DOUBLE_EQ(a.clipping.clippedPercent, 1.1);
    EXPECT_FLOAT_EQ(a.clipping.peakTorque, 0.05f * 994);  // the 995th of 1000 by rank
    EXPECT_NEAR(a.clipping.peakPercentOfFullScale, 100.0 * 49.7 / 40.0, 1e-3);
    ASSERT_EQ(a.clipping.stretches.size(), 2u);
    EXPECT_NEAR(a.clipping.stretches[0].start, 100 * 0.016667, 1e-4);
    EXPECT_NEAR(a.clipping.stretches[0].end, 110 * 0.016667, 1e-3);
    EXPECT_EQ(a.absStretches.size(), 1u);
    EXPECT_EQ(a.crashHoldStretches.size(), 1u);
    ASSERT_EQ(a.gaps.size(), 1u);
    EXPECT_NEAR(a.gaps[0].end - a.gaps[0].start, 2.0 + 0.016667, 1e-4);
}

TEST(PlotData, EveryPeakSurvivesDecimationAndTheHistogramBinsByShareOfFullScale) {
    std::vector<RecordingSample> samples = test::SampleRecords(6000);
    samples[4321].mixedTorque = 33.0f;
    samples[17].mixedTorque = -12.0f;
    const double duration = 5999 * 0.016667;
    const std::vector<PlotBucket> plot = DecimateForPlot(samples, &RecordingSample::mixedTorque, 100, {0.0, duration});
    ASSERT_EQ(plot.size(), 100u);
    float highest = 0.0f, lowest = 0.0f;
    for (const PlotBucket& b : plot) {
        highest = std::max(highest, b.highest);
        lowest = std::min(lowest, b.lowest);
    }
    EXPECT_EQ(highest, 33.0f);
    EXPECT_EQ(lowest, -12.0f);
    EXPECT_EQ(plot[0].lowest, -12.0f);
    // Zoomed to the stretch around the peak: only its records, in slices of that stretch.
    const std::vector<PlotBucket> zoomed = DecimateForPlot(samples, &RecordingSample::mixedTorque, 10, {70.0, 74.0});
    ASSERT_EQ(zoomed.size(), 10u);
    EXPECT_NEAR(zoomed[0].start, 70.0, 1e-9);
    EXPECT_EQ(zoomed[5].highest, 33.0f);  // 72.02 s
    EXPECT_EQ(zoomed[0].lowest, 0.0f);

    samples[0].fullScaleTorque = 0.0f;  // not counted
    samples[1].mixedTorque = 400.0f;   // ten times full scale: the last bin
    const std::vector<size_t> bins = FullScaleHistogram(samples);
    ASSERT_EQ(bins.size(), kHistogramBins);
    EXPECT_EQ(bins[kHistogramBins - 1], 1u);
    EXPECT_EQ(bins[16], 1u);  // 33 / 40 = 0.825 of full scale, bins 0.05 wide
    EXPECT_EQ(bins[6], 1u);   // |-12| / 40 = 0.3
    EXPECT_EQ(bins[0], 6000u - 4u);
}

// The report's dates: the header's start time in UTC, whatever a file holds.
TEST(FormatStartTime, GivesTheUtcDateOrUnknown) {
    const struct {
        uint64_t ms;
        const char* text;
    } cases[] = {
        {0, "unknown"},
        {1, "1970-01-01 00:00:00 UTC"},
        {951782400000ull, "2000-02-29 00:00:00 UTC"},
        {1700000000999ull, "2023-11-14 22:13:20 UTC"},
        {253402300799999ull, "9999-12-31 23:59:59 UTC"},
        {253402300800000ull, "unknown"},
        {UINT64_MAX, "unknown"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatStartTime(c.ms), c.text) << c.ms;
}

}  // namespace
}  // namespace veltor::analyzer
