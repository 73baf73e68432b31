#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "app/ForceMeter.h"
#include "engine/FfbEngine.h"

namespace veltor {
namespace {

constexpr int64_t kMs = 1'000'000;

OutputFigures Figures(int32_t peak, uint32_t outputs = 30, uint32_t clipped = 0) { return {peak, outputs, clipped}; }

// The bar is the highest output of the last 100 ms, the mark the highest held for 1 s, the red the clipping
// of the last 250 ms, all against the looks' times.
TEST(ForceMeter, TheBarTheMarkAndTheRedEachFollowTheirOwnWindow) {
    ForceMeter meter;
    meter.Take(Figures(8000, 30, 2), 0);
    meter.Take(Figures(2000), 33 * kMs);
    const struct {
        int64_t ms;
        float level, peak;
        bool clipping;
    } readings[] = {
        {33, 0.8f, 0.8f, true},     {99, 0.8f, 0.8f, true},    {100, 0.2f, 0.8f, true},
        {133, 0.0f, 0.8f, true},    {250, 0.0f, 0.8f, false},
    };
    for (const auto& r : readings) {
        const MeterReading reading = meter.Reading(r.ms * kMs);
        EXPECT_FLOAT_EQ(reading.level, r.level) << r.ms;
        EXPECT_FLOAT_EQ(reading.peak, r.peak) << r.ms;
        EXPECT_EQ(reading.clipping, r.clipping) << r.ms;
    }
    meter.Take(Figures(1000), 999 * kMs);
    EXPECT_FLOAT_EQ(meter.Reading(999 * kMs).peak, 0.8f) << "held";
    meter.Take(Figures(500), 1000 * kMs);
    EXPECT_FLOAT_EQ(meter.Reading(1000 * kMs).peak, 0.1f) << "a second on, the mark falls to the bar";
}

// The stint's figure rounds to a tenth, stays once the stint is over and starts afresh with its next output.
TEST(ForceMeter, TheClippingFigureCoversTheStintUntilTheNextBegins) {
    ForceMeter meter;
    meter.Take(Figures(9996, 2000, 25), 0);
    meter.Take(Figures(9996, 1000, 12), 33 * kMs);
    EXPECT_EQ(ClipText(meter.Reading(33 * kMs).clipTenths), L"clip 1.2 %");  // 37 of 3000
    meter.EndStint();
    meter.Take(Figures(0, 0, 0), 283 * kMs);
    EXPECT_EQ(meter.Reading(283 * kMs).clipTenths, 12);
    meter.Take(Figures(500, 400, 1), 533 * kMs);
    EXPECT_EQ(ClipText(meter.Reading(533 * kMs).clipTenths), L"clip 0.3 %");  // 0.25 rounds up
    meter.Take(Figures(500, 1, 2), 566 * kMs);
    EXPECT_LE(meter.Reading(566 * kMs).clipTenths, 1000);
}

// The engine thread counts while the GUI thread takes and zeroes the figures: nothing is lost or counted
// twice (run under ThreadSanitizer too).
TEST(ForceMeter, FiguresTakenWhileTheEngineCountsAddUpToEveryOutput) {
    constexpr int kOutputs = 200000;
    auto engine = std::make_unique<FfbEngine>();
    const EngineSettings settings;  // 40 Nm at full scale
    std::atomic<bool> done{false};
    std::thread counting([&] {
        for (int i = 0; i < kOutputs; ++i) engine->CountOutput(i % 4 == 0 ? 60.0f : 20.0f, false, settings);
        done.store(true);
    });
    uint64_t outputs = 0, clipped = 0;
    int32_t peak = 0;
    const auto take = [&] {
        const OutputFigures figures = engine->TakeOutputFigures();
        outputs += figures.outputs;
        clipped += figures.clipped;
        peak = std::max(peak, figures.peak);
    };
    while (!done.load()) take();
    counting.join();
    take();
    EXPECT_EQ(outputs, static_cast<uint64_t>(kOutputs));
    EXPECT_EQ(clipped, static_cast<uint64_t>(kOutputs / 4));
    EXPECT_EQ(peak, 9996);
}

}  // namespace
}  // namespace veltor
