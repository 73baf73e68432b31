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

TEST(RecordingRing, HeadWrapsFromSlot8191ToSlotZero) {
    auto ring = std::make_unique<RecordingRing>();
    RecordingSample batch[256];
    uint32_t passed = 0;
    for (int32_t i = 0; i < 8191; ++i) {
        ASSERT_TRUE(ring->TryPush(Sample(i), 1));
        if (ring->CopyOut(batch, 256, 1, passed) == 256) ring->Release(passed);
    }
    ring->CopyOut(batch, 256, 1, passed);
    ring->Release(passed);
    ASSERT_EQ(ring->Head(), 8191u);
    ASSERT_TRUE(ring->TryPush(Sample(-1), 1));
    EXPECT_EQ(ring->Head(), 0u);
    ASSERT_TRUE(ring->TryPush(Sample(-2), 1));
    ASSERT_EQ(ring->CopyOut(batch, 256, 1, passed), 2u);
    EXPECT_EQ(batch[0].tickCount, -1);
    EXPECT_EQ(batch[1].tickCount, -2);
}

// Samples of another generation are passed over and released with the rest; nothing leaves before Release.
TEST(RecordingRing, CopyOutTakesOneGenerationAndLeavesSlotsUntilReleased) {
    auto ring = std::make_unique<RecordingRing>();
    for (int32_t i = 0; i < 5; ++i) ring->TryPush(Sample(i), i == 1 ? 7 : 8);
    RecordingSample batch[3];
    uint32_t passed = 0;
    EXPECT_EQ(ring->CopyOut(batch, 3, 8, passed), 2u);
    EXPECT_EQ(passed, 3u);
    EXPECT_EQ(batch[1].tickCount, 2);
    EXPECT_EQ(ring->CopyOut(batch, 3, 8, passed), 2u);
    ring->Release(passed);
    EXPECT_EQ(ring->CopyOut(batch, 3, 8, passed), 2u);
    EXPECT_EQ(batch[0].tickCount, 3);
    ring->DiscardAll();
    EXPECT_TRUE(ring->Empty());
}

// One producer and one consumer at full speed: every sample arrives once, in order.
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
