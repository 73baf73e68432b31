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
    for (int32_t i = 0; i < 8191; ++i) {
        ASSERT_TRUE(ring->TryPush(Sample(i)));
        if (ring->CopyOut(batch, 256) == 256) ring->Release(256);
    }
    ring->Release(ring->CopyOut(batch, 256));
    ASSERT_EQ(ring->Head(), 8191u);
    ASSERT_TRUE(ring->Empty());
    ASSERT_TRUE(ring->TryPush(Sample(-1)));
    EXPECT_EQ(ring->Head(), 0u);
    ASSERT_TRUE(ring->TryPush(Sample(-2)));
    ASSERT_EQ(ring->CopyOut(batch, 256), 2u);
    EXPECT_EQ(batch[0].tickCount, -1);
    EXPECT_EQ(batch[1].tickCount, -2);
    ring->Release(2);
    EXPECT_EQ(ring->Tail(), 1u);
}

TEST(RecordingRing, CopyOutLeavesSamplesUntilReleased) {
    auto ring = std::make_unique<RecordingRing>();
    for (int32_t i = 0; i < 5; ++i) ring->TryPush(Sample(i));
    RecordingSample batch[3];
    EXPECT_EQ(ring->CopyOut(batch, 3), 3u);
    EXPECT_EQ(ring->CopyOut(batch, 3), 3u);
    ring->Release(3);
    EXPECT_EQ(ring->CopyOut(batch, 3), 2u);
    EXPECT_EQ(batch[0].tickCount, 3);
    EXPECT_EQ(batch[0].crashGain, 1.0f);  // a sample starts at zero with the full crash gain
    EXPECT_EQ(batch[0].timeMicroseconds, 0u);
}

// One producer and one consumer at full speed: every sample arrives once, in order.
TEST(RecordingRing, TwoThreadsPassEverySampleInOrder) {
    auto ring = std::make_unique<RecordingRing>();
    constexpr int32_t kCount = 200000;
    std::thread producer([&ring] {
        for (int32_t i = 1; i <= kCount; ++i) {
            while (!ring->TryPush(Sample(i))) std::this_thread::yield();
        }
    });
    int64_t sum = 0;
    int32_t expected = 1;
    bool ordered = true;
    RecordingSample batch[256];
    while (expected <= kCount) {
        const uint32_t count = ring->CopyOut(batch, 256);
        for (uint32_t k = 0; k < count; ++k) {
            ordered = ordered && batch[k].tickCount == expected;
            sum += batch[k].tickCount;
            ++expected;
        }
        ring->Release(count);
        if (count == 0) std::this_thread::yield();
    }
    producer.join();
    EXPECT_TRUE(ordered);
    EXPECT_EQ(sum, static_cast<int64_t>(kCount) * (kCount + 1) / 2);
    EXPECT_TRUE(ring->Empty());
}

}  // namespace
}  // namespace veltor
