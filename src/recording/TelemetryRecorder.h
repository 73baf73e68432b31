#pragma once
#include <atomic>
#include <cstdint>
#include <string>
#include <system_error>
#include <thread>

#include "platform/SteadyClock.h"
#include "platform/ThreadControl.h"
#include "recording/RecordingFile.h"
#include "recording/RecordingHeader.h"
#include "recording/RecordingRing.h"

namespace veltor {

// What the recorder needs of the platform: its file, the steady clock, and how the writer thread starts
// and idles.
struct RecorderPlatform {
    using File = RecordingFile;
    static int64_t Now() { return SteadyNowNanoseconds(); }
    static void EnterWriterThread() { SetCurrentThreadPriorityBelowNormal(); }
    static void IdleWait() { SleepMilliseconds(10); }
};

// The recording a sample is taken for, as the engine saw it when it began the sample.
struct RecordingTicket {
    uint32_t generation = 0;
    int64_t startTime = 0;  // steady-clock ns

    // Whole microseconds from the start to `now`; a time before the start counts as 0 rather than wrapping.
    uint64_t ElapsedMicroseconds(int64_t now) const {
        return now > startTime ? static_cast<uint64_t>((now - startTime) / 1000) : 0;
    }
};

// Writes a recording without slowing the engine: the engine pushes one sample per tick into the ring, a
// writer thread below normal priority drains it to the file in batches. The GUI thread starts and stops it.
//
// Each Start begins a new generation. Samples carry the generation they were begun for, and a writer takes
// only its own, so a push that raced a restart can never reach the new file.
template <class Platform>
class BasicTelemetryRecorder {
public:
    using File = typename Platform::File;
    static constexpr uint32_t kBatchRecords = 256;

    BasicTelemetryRecorder() = default;
    ~BasicTelemetryRecorder() { Stop(); }
    BasicTelemetryRecorder(const BasicTelemetryRecorder&) = delete;
    BasicTelemetryRecorder& operator=(const BasicTelemetryRecorder&) = delete;

    // GUI thread. Finishes any earlier recording, writes the header, and only then takes the start time
    // from the steady clock, so no sample is late by the set-up.
    bool Start(const std::wstring& path, const RecordingHeader& header) { return Begin(path, header, nullptr); }
    // The same for samples timed by another clock (the offline replay's): times count from `startTime`.
    bool Start(const std::wstring& path, const RecordingHeader& header, int64_t startTime) {
        return Begin(path, header, &startTime);
    }

    // GUI thread. The writer drains what the ring holds before the file is flushed and closed.
    void Stop() { FinishWriter(); }

    // Engine thread, before it reads the clock for the sample: false when no recording runs.
    bool BeginSample(RecordingTicket& ticket) const {
        if (!active.load()) return false;
        ticket.generation = static_cast<uint32_t>(dropState.load() >> 32);  // also publishes startTime
        ticket.startTime = startTime.load(std::memory_order_relaxed);
        return true;
    }

    // Engine thread. Refused when no recording runs; counted as dropped when the ring is full. No lock, no
    // allocation.
    void Push(const RecordingSample& sample, const RecordingTicket& ticket) {
        if (!active.load()) return;
        if (!ring.TryPush(sample, ticket.generation)) CountDrop(ticket.generation);
    }

    bool IsActive() const { return active.load(); }  // any thread
    // Any thread; kept after Stop, until the next Start.
    uint32_t DroppedSamples() const { return static_cast<uint32_t>(dropState.load() & kDropMask); }

private:
    static constexpr uint64_t kDropMask = 0xFFFFFFFFu;

    bool Begin(const std::wstring& path, const RecordingHeader& header, const int64_t* givenStart) {
        FinishWriter();
        if (!file.Create(path)) return false;
        if (!file.Write(&header, sizeof header)) {
            file.FlushAndClose();  // the incomplete file stays on the disk
            return false;
        }
        ring.DiscardAll();
        startTime.store(givenStart != nullptr ? *givenStart : Platform::Now(), std::memory_order_relaxed);
        const uint32_t generation = static_cast<uint32_t>(dropState.load() >> 32) + 1;
        dropState.store(static_cast<uint64_t>(generation) << 32);  // no drops yet
        stopWriter.store(false);
        active.store(true);
        try {
            writerThread = std::thread(&BasicTelemetryRecorder::WriterThreadMain, this, generation);
        } catch (const std::system_error&) {
            active.store(false);
            file.FlushAndClose();
            return false;
        }
        return true;
    }

    void FinishWriter() {
        active.store(false);
        stopWriter.store(true);
        if (writerThread.joinable()) writerThread.join();
        file.FlushAndClose();
    }

    // A drop counts only for the recording it was taken for; a count never runs into the generation.
    void CountDrop(uint32_t generation) {
        uint64_t state = dropState.load();
        while ((state >> 32) == generation && (state & kDropMask) != kDropMask &&
               !dropState.compare_exchange_weak(state, state + 1)) {
        }
    }

    void WriterThreadMain(uint32_t generation) {
        Platform::EnterWriterThread();
        RecordingSample batch[kBatchRecords];  // 22528 bytes, on this thread's stack
        for (;;) {
            if (stopWriter.load() && ring.Empty()) return;
            uint32_t passed = 0;
            const uint32_t count = ring.CopyOut(batch, kBatchRecords, generation, passed);
            if (passed == 0) {
                Platform::IdleWait();
                continue;
            }
            // A failed write loses the batch unreported.
            if (count > 0) file.Write(batch, count * sizeof(RecordingSample));
            ring.Release(passed);
        }
    }

    RecordingRing ring;                   // engine pushes, writer drains
    std::atomic<uint64_t> dropState{0};   // generation << 32 | drops of it; GUI starts one, engine counts
    std::atomic<bool> active{false};      // GUI sets and clears; engine reads
    std::atomic<bool> stopWriter{false};  // GUI sets and clears; writer reads
    std::atomic<int64_t> startTime{0};    // GUI sets in Start; engine reads
    File file;                            // GUI opens and closes; writer writes in between
    std::thread writerThread;             // GUI thread
};

using TelemetryRecorder = BasicTelemetryRecorder<RecorderPlatform>;

}  // namespace veltor
