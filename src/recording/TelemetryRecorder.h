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

// What the recorder needs of the platform: its file, and how the writer thread starts and idles.
struct RecorderPlatform {
    using File = RecordingFile;
    static void EnterWriterThread() { SetCurrentThreadPriorityBelowNormal(); }
    static void IdleWait() { SleepMilliseconds(10); }
};

// Writes a recording without slowing the engine: the engine pushes one sample per tick into the ring, a
// writer thread below normal priority drains it to the file in batches. The GUI thread starts and stops it.
template <class Platform>
class BasicTelemetryRecorder {
public:
    using File = typename Platform::File;
    static constexpr uint32_t kBatchRecords = 256;

    BasicTelemetryRecorder() = default;
    ~BasicTelemetryRecorder() { Stop(); }
    BasicTelemetryRecorder(const BasicTelemetryRecorder&) = delete;
    BasicTelemetryRecorder& operator=(const BasicTelemetryRecorder&) = delete;

    // GUI thread. Finishes any earlier recording, then writes the header; `now` is the steady clock in ns.
    bool Start(const std::wstring& path, const RecordingHeader& header, int64_t now) {
        FinishWriter();
        if (!file.Create(path)) return false;
        if (!file.Write(&header, sizeof header)) {
            file.FlushAndClose();  // the incomplete file stays on the disk
            return false;
        }
        ring.Reset();
        droppedSamples.store(0);
        startTime.store(now, std::memory_order_relaxed);
        stopWriter.store(false);
        active.store(true);
        try {
            writerThread = std::thread(&BasicTelemetryRecorder::WriterThreadMain, this);
        } catch (const std::system_error&) {
            active.store(false);
            file.FlushAndClose();
            return false;
        }
        return true;
    }

    // GUI thread. The writer drains what the ring holds before the file is flushed and closed.
    void Stop() { FinishWriter(); }

    // Engine thread. Refused when not recording; counted as dropped when the ring is full.
    // No lock, no allocation.
    void Push(const RecordingSample& sample) {
        if (!active.load()) return;
        if (!ring.TryPush(sample)) droppedSamples.fetch_add(1);
    }

    // Engine thread: whole microseconds since the start, for a steady-clock time `now` in ns.
    uint64_t ElapsedMicroseconds(int64_t now) const {
        return static_cast<uint64_t>((now - startTime.load(std::memory_order_relaxed)) / 1000);
    }

    bool IsActive() const { return active.load(); }                  // any thread
    uint32_t DroppedSamples() const { return droppedSamples.load(); }  // any thread; kept after Stop

private:
    void FinishWriter() {
        active.store(false);
        stopWriter.store(true);
        if (writerThread.joinable()) writerThread.join();
        file.FlushAndClose();
    }

    void WriterThreadMain() {
        Platform::EnterWriterThread();
        RecordingSample batch[kBatchRecords];  // 22528 bytes, on this thread's stack
        for (;;) {
            if (stopWriter.load() && ring.Empty()) return;
            const uint32_t count = ring.CopyOut(batch, kBatchRecords);
            if (count == 0) {
                Platform::IdleWait();
                continue;
            }
            file.Write(batch, count * sizeof(RecordingSample));  // a failed write loses the batch unreported
            ring.Release(count);
        }
    }

    RecordingRing ring;                        // engine pushes, writer drains
    std::atomic<uint32_t> droppedSamples{0};   // engine adds; GUI reads and resets in Start
    std::atomic<bool> active{false};           // GUI sets and clears; engine reads
    std::atomic<bool> stopWriter{false};       // GUI sets and clears; writer reads
    std::atomic<int64_t> startTime{0};         // GUI sets in Start; engine reads
    File file;                                 // GUI opens and closes; writer writes in between
    std::thread writerThread;                  // GUI thread
};

using TelemetryRecorder = BasicTelemetryRecorder<RecorderPlatform>;

}  // namespace veltor
