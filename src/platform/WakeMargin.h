#pragma once
#include <cstdint>

namespace veltor {

// How late one kind of sleep wakes on the thread that uses it, and the margin that a sleep of that kind
// leaves before its target. Fixed storage: a histogram of lateness whose weights halve every
// kHalfLifeSamples, so old wake-ups fade and nothing is allocated. One thread only.
//
// A burst of wake-ups later than the margin allows (two within kBurstSamples) widens it at once; a lone
// one is the machine's hiccup, which no margin short of spinning always would hide, and only counts in the
// histogram. Otherwise the margin narrows towards the 99th percentile of the recent wake-ups plus a pad:
// quickly while the first samples come in, slowly after.
class WakeMargin {
public:
    static constexpr int64_t kBucketNanoseconds = 10000;    // 10 µs
    static constexpr int kBuckets = 400;                    // to 4 ms; later wake-ups count in the last
    static constexpr int64_t kWidestNanoseconds = kBucketNanoseconds * kBuckets;
    static constexpr int64_t kPadNanoseconds = 20000;       // beyond the percentile, for the spin to land
    static constexpr int32_t kNarrowDivisor = 128;          // a sample closes 1/128 of the gap to the goal,
    static constexpr int32_t kFirstNarrowDivisor = 8;       // or more while few samples are known
    static constexpr uint32_t kHalfLifeSamples = 1024;
    static constexpr uint32_t kBurstSamples = 64;


    WakeMargin() = default;
    explicit WakeMargin(int64_t initialNanoseconds) : margin(initialNanoseconds) {}

    void Record(int64_t latenessNanoseconds);
    // A wait that could not sleep, the margin being too wide for it: quiet, so one step narrower, never
    // below what the recorded wake-ups ask for. Without it a margin wider than the gap would never learn.
    void Quiet();

    int64_t Margin() const { return margin; }
    // The lateness below which `permille` thousandths of the recent weight lie (the bucket's upper edge).
    int64_t Quantile(int32_t permille) const;
    uint32_t Samples() const { return samples; }

private:
    void Decay();
    int64_t Goal() const;
    void NarrowTowards(int64_t goal);

    uint32_t weights[kBuckets] = {};
    uint32_t totalWeight = 0;
    uint32_t samples = 0;
    uint32_t sinceDecay = 0;
    uint32_t lastBeyond = 0;  // the sample count at the last wake-up beyond the margin, 0 for none
    int64_t margin = 0;
};

}  // namespace veltor
