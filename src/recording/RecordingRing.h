#pragma once
#include <atomic>
#include <cstdint>
#include <cstring>

#include "recording/RecordingSample.h"

namespace veltor {

// Single-producer, single-consumer queue of samples, held inline: nothing is allocated, nothing locks.
// One slot stays free to tell full from empty, so it holds at most 8191 samples.
class RecordingRing {
public:
    static constexpr uint32_t kSlots = 8192;
    static constexpr uint32_t kIndexMask = 0x1FFF;

    RecordingRing() = default;
    RecordingRing(const RecordingRing&) = delete;
    RecordingRing& operator=(const RecordingRing&) = delete;

    // Producer only. False when full: the newest sample is the one refused.
    bool TryPush(const RecordingSample& sample) {
        const uint32_t at = head.load(std::memory_order_relaxed);
        const uint32_t next = (at + 1) & kIndexMask;
        if (next == tail.load(std::memory_order_acquire)) return false;
        slots[at] = sample;
        head.store(next, std::memory_order_release);  // the slot's content is visible before the index
        return true;
    }

    // Consumer only. Copies up to `capacity` samples from the tail onward without taking them out;
    // Release(count) takes them once they are written.
    uint32_t CopyOut(RecordingSample* batch, uint32_t capacity) const {
        const uint32_t end = head.load(std::memory_order_acquire);
        uint32_t at = tail.load(std::memory_order_relaxed);
        uint32_t count = 0;
        while (count < capacity && at != end) {
            batch[count++] = slots[at];
            at = (at + 1) & kIndexMask;
        }
        return count;
    }

    // Consumer only. The reads of the released slots are finished before the producer may reuse them.
    void Release(uint32_t count) {
        tail.store((tail.load(std::memory_order_relaxed) + count) & kIndexMask, std::memory_order_release);
    }

    // Consumer side.
    bool Empty() const { return tail.load(std::memory_order_relaxed) == head.load(std::memory_order_acquire); }

    // Only while neither producer nor consumer runs.
    void Reset() {
        head.store(0, std::memory_order_relaxed);
        tail.store(0, std::memory_order_relaxed);
    }

    uint32_t Head() const { return head.load(std::memory_order_acquire); }
    uint32_t Tail() const { return tail.load(std::memory_order_acquire); }

private:
    alignas(64) std::atomic<uint32_t> head{0};  // next slot the producer fills; stored by the producer only
    alignas(64) std::atomic<uint32_t> tail{0};  // next slot the consumer takes; stored by the consumer only
    alignas(64) RecordingSample slots[kSlots];  // each starts zero with crashGain 1.0
};

}  // namespace veltor
