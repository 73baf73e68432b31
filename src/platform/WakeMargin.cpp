#include "platform/WakeMargin.h"

#include <algorithm>

namespace veltor {
namespace {

// Weights are counts scaled up, so halving keeps a single old wake-up visible for a few half-lives.
constexpr uint32_t kSampleWeight = 1024;

}  // namespace

void WakeMargin::Record(int64_t latenessNanoseconds) {
    const int64_t lateness = std::clamp<int64_t>(latenessNanoseconds, 0, kWidestNanoseconds);
    const int bucket = static_cast<int>(std::min<int64_t>(lateness / kBucketNanoseconds, kBuckets - 1));
    weights[bucket] += kSampleWeight;
    totalWeight += kSampleWeight;
    ++samples;
    if (++sinceDecay == kHalfLifeSamples) Decay();

    const int64_t goal = Goal();
    const int64_t needed = std::min(lateness + kPadNanoseconds, kWidestNanoseconds);
    if (needed > margin) {
        const bool burst = lastBeyond != 0 && samples - lastBeyond <= kBurstSamples;
        lastBeyond = samples;
        if (burst) margin = std::max(needed, goal);
        else margin = std::max(margin, goal);
        return;
    }
    if (goal > margin) {
        margin = goal;
        return;
    }
    NarrowTowards(goal);
}

void WakeMargin::Quiet() {
    const int64_t goal = Goal();
    if (margin > goal) NarrowTowards(goal);
}

int64_t WakeMargin::Goal() const { return std::min(Quantile(990) + kPadNanoseconds, kWidestNanoseconds); }

void WakeMargin::NarrowTowards(int64_t goal) {
    const int64_t divisor = std::clamp<int64_t>(samples, kFirstNarrowDivisor, kNarrowDivisor);
    margin -= std::max<int64_t>((margin - goal) / divisor, margin > goal ? 1 : 0);
}

int64_t WakeMargin::Quantile(int32_t permille) const {
    if (totalWeight == 0) return 0;
    // From the top: the first bucket where the weight above it reaches the share that lies above the quantile.
    const uint64_t above = static_cast<uint64_t>(totalWeight) * static_cast<uint64_t>(1000 - permille) / 1000;
    uint64_t seen = 0;
    for (int bucket = kBuckets - 1; bucket >= 0; --bucket) {
        seen += weights[bucket];
        if (seen > above) return (bucket + 1) * kBucketNanoseconds;
    }
    return kBucketNanoseconds;
}

void WakeMargin::Decay() {
    sinceDecay = 0;
    totalWeight = 0;
    for (uint32_t& weight : weights) {
        weight /= 2;
        totalWeight += weight;
    }
}

}  // namespace veltor
