#pragma once
#include <atomic>
#include <cstdint>

#include "recording/RecordingSample.h"

namespace veltor {

// Single-producer, single-consumer queue of samples, held inline: nothing is allocated, nothing locks.
// One slot stays free to tell full from empty, so it holds at most 8191 samples. Each sample carries the
// generation of the recording it was taken for, so a consumer can pass over samples of an earlier one.
class RecordingRing {
public:
    static constexpr uint32_t kSlots = 8192;
    static constexpr uint32_t kIndexMask = 0x1FFF;

    RecordingRing() = default;
    RecordingRing(const RecordingRing&) = delete;
    RecordingRing& operator=(const RecordingRing&) = delete;

    // Producer only. False when full: the newest sample is the one refused.
    bool TryPush(const RecordingSample& sample, uint32_t generation) {
        const uint32_t at = head.load(std::memory_order_relaxed);
        const uint32_t next = (at + 1) & kIndexMask;
        if (next == tail.load(std::memory_order_acquire)) return false;
        slots[at].sample = sample;
        slots[at].generation = generation;
        head.store(next, std::memory_order_release);  // the slot's content is visible before the index
        return true;
    }

    // Consumer only. Looks at up to `capacity` slots from the tail onward without taking them out and copies
    // the samples of `generation` into `batch`; `passed` receives the slots looked at, for Release.
    uint32_t CopyOut(RecordingSample* batch, uint32_t capacity, uint32_t generation, uint32_t& passed) const {
        const uint32_t end = head.load(std::memory_order_acquire);
        uint32_t at = tail.load(std::memory_order_relaxed);
        uint32_t count = 0;
        passed = 0;
        for (; passed < capacity && at != end; ++passed, at = (at + 1) & kIndexMask) {
            if (slots[at].generation == generation) batch[count++] = slots[at].sample;
        }
        return count;
    }

    // Consumer only. The reads of the released slots are finished before the producer may reuse them.
    void Release(uint32_t count) {
        tail.store((tail.load(std::memory_order_relaxed) + count) & kIndexMask, std::memory_order_release);
    }

    // Consumer only: gives back everything the producer has published so far, unread. The producer keeps
    // its index, so a push in flight cannot land behind a reset.
    void DiscardAll() { tail.store(head.load(std::memory_order_acquire), std::memory_order_release); }

    // Consumer side.
    bool Empty() const { return tail.load(std::memory_order_relaxed) == head.load(std::memory_order_acquire); }

    uint32_t Head() const { return head.load(std::memory_order_acquire); }
    uint32_t Tail() const { return tail.load(std::memory_order_acquire); }

private:
    struct Slot {
        RecordingSample sample;  // starts zero with crashGain 1.0
        uint32_t generation = 0;
    };
    alignas(64) std::atomic<uint32_t> head{0};  // next slot the producer fills; stored by the producer only
    alignas(64) std::atomic<uint32_t> tail{0};  // next slot the consumer takes; stored by the consumer only
    alignas(64) Slot slots[kSlots];
};

}  // namespace veltor
