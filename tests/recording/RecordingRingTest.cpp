#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "recording/RecordingRing.h"

namespace veltor {
namespace {

RecordingSample Sample(int32_t tick) {
    RecordingSample sample;
    sample.tickCount = tick;
    return sample;
}

// One producer and one consumer at full speed, round the ring many times: every sample arrives once, in
// order.
TEST(RecordingRing, TwoThreadsPassEverySampleInOrder) {
    auto ring = std::make_unique<RecordingRing>();
    constexpr int32_t kCount = 200000;
    std::thread producer([&ring] {
        for (int32_t i = 1; i <= kCount; ++i) {
            while (!ring->TryPush(Sample(i), 1)) std::this_thread::yield();
        }
    });
    int32_t expected = 1;
    bool ordered = true;
    RecordingSample batch[256];
    while (expected <= kCount) {
        uint32_t passed = 0;
        const uint32_t count = ring->CopyOut(batch, 256, 1, passed);
        for (uint32_t k = 0; k < count; ++k) ordered = ordered && batch[k].tickCount == expected++;
        ring->Release(passed);
        if (count == 0) std::this_thread::yield();
    }
    producer.join();
    EXPECT_TRUE(ordered);
    EXPECT_TRUE(ring->Empty());
}

}  // namespace
}  // namespace veltor
