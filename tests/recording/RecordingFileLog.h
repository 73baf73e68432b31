#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "recording/RecordingSample.h"
#include "recording/TelemetryRecorder.h"

namespace veltor::test {

// What the recorder did to its file, shared between the test and the writer thread under a mutex.
struct FileLog {
    std::mutex lock;
    std::vector<size_t> writes;  // bytes per Write call, in order
    std::vector<uint8_t> bytes;  // everything written
    int creates = 0;
    int closes = 0;
    bool failCreate = false;
    bool failWrites = false;

    static FileLog& Instance() {
        static FileLog log;
        return log;
    }
    template <class F>
    static auto Locked(F f) {
        std::lock_guard guard(Instance().lock);
        return f(Instance());
    }
    void Reset() {
        Locked([](FileLog& log) {
            log.writes.clear();
            log.bytes.clear();
            log.creates = log.closes = 0;
            log.failCreate = log.failWrites = false;
        });
    }
    std::vector<size_t> Writes() { return Locked([](FileLog& log) { return log.writes; }); }
    size_t Size() { return Locked([](FileLog& log) { return log.bytes.size(); }); }
    // Tick counts of the records after the first `skip` bytes of headers.
    std::vector<int32_t> RecordTicks(size_t skip) {
        return Locked([skip](FileLog& log) {
            std::vector<int32_t> ticks;
            for (size_t at = skip; at + sizeof(RecordingSample) <= log.bytes.size(); at += sizeof(RecordingSample)) {
                RecordingSample sample;
                std::memcpy(&sample, log.bytes.data() + at, sizeof sample);
                ticks.push_back(sample.tickCount);
            }
            return ticks;
        });
    }
};

// The recorder's file, logged instead of written.
class LoggingFile {
public:
    bool Create(const std::wstring&) {
        return open = FileLog::Locked([](FileLog& log) { return !log.failCreate && ++log.creates > 0; });
    }
    bool Write(const void* data, size_t size) {
        const uint8_t* first = static_cast<const uint8_t*>(data);
        return FileLog::Locked([&](FileLog& log) {
            log.writes.push_back(size);
            log.bytes.insert(log.bytes.end(), first, first + size);
            return !log.failWrites;
        });
    }
    void FlushAndClose() {
        if (std::exchange(open, false)) FileLog::Locked([](FileLog& log) { ++log.closes; });
    }
    bool IsOpen() const { return open; }

private:
    bool open = false;
};

// Holds the writer thread back at its start until the test opens the gate.
struct WriterGate {
    std::mutex lock;
    std::condition_variable changed;
    bool open = true;

    static WriterGate& Instance() {
        static WriterGate gate;
        return gate;
    }
    void Set(bool isOpen) {
        {
            std::lock_guard guard(lock);
            open = isOpen;
        }
        changed.notify_all();
    }
    void Pass() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return open; });
    }
};

struct HeldWriterPlatform {
    using File = LoggingFile;
    static void EnterWriterThread() { WriterGate::Instance().Pass(); }
    static void IdleWait() { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
};

using HeldRecorder = BasicTelemetryRecorder<HeldWriterPlatform>;

}  // namespace veltor::test
