#pragma once
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/SteadyClock.h"
#include "recording/RecordingSample.h"
#include "recording/TelemetryRecorder.h"

namespace veltor::test {

// What the recorder did to its files, kept in memory and shared with the writer thread under a mutex.
struct FileLog {
    std::mutex lock;
    std::vector<std::vector<uint8_t>> files;  // the bytes of each created file, in order of creation
    std::vector<size_t> writes;               // bytes per Write call, all files
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
    static void Reset() {
        Locked([](FileLog& log) {
            log.files.clear();
            log.writes.clear();
            log.closes = 0;
            log.failCreate = log.failWrites = false;
        });
    }
    static std::vector<size_t> Writes() { return Locked([](FileLog& log) { return log.writes; }); }
    static size_t FileCount() { return Locked([](FileLog& log) { return log.files.size(); }); }
    // The records of file `index`, after its header.
    static std::vector<RecordingSample> Records(size_t index) {
        return Locked([index](FileLog& log) {
            std::vector<RecordingSample> records;
            const std::vector<uint8_t>& bytes = log.files.at(index);
            for (size_t at = sizeof(RecordingHeader); at + sizeof(RecordingSample) <= bytes.size();
                 at += sizeof(RecordingSample)) {
                records.emplace_back();
                std::memcpy(&records.back(), bytes.data() + at, sizeof(RecordingSample));
            }
            return records;
        });
    }
};

// The recorder's file, kept in FileLog. Creating it takes 50 ms of the stepped clock, as a slow disk would.
class LoggingFile {
public:
    static constexpr int64_t kCreateNanoseconds = 50000000;
    static inline std::atomic<int64_t> steppedNow{0};

    bool Create(const std::wstring&) {
        steppedNow += kCreateNanoseconds;
        open = FileLog::Locked([this](FileLog& log) {
            if (log.failCreate) return false;
            index = log.files.size();
            log.files.emplace_back();
            return true;
        });
        return open;
    }
    bool Write(const void* data, size_t size) {
        const uint8_t* first = static_cast<const uint8_t*>(data);
        return FileLog::Locked([&](FileLog& log) {
            log.writes.push_back(size);
            log.files[index].insert(log.files[index].end(), first, first + size);
            return !log.failWrites;
        });
    }
    void FlushAndClose() {
        if (std::exchange(open, false)) FileLog::Locked([](FileLog& log) { ++log.closes; });
    }
    bool IsOpen() const { return open; }

private:
    bool open = false;
    size_t index = 0;
};

// Holds the writer thread back at its start until the test opens the gate.
struct WriterGate {
    static inline std::atomic<bool> open{true};
    static void Set(bool isOpen) { open.store(isOpen); }
    static void Pass() {
        while (!open.load()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
};

// `Stepped`: the recorder's clock is LoggingFile::steppedNow; otherwise the steady clock.
template <bool Stepped>
struct MemoryPlatform {
    using File = LoggingFile;
    static int64_t Now() { return Stepped ? LoggingFile::steppedNow.load() : SteadyNowNanoseconds(); }
    static void EnterWriterThread() { WriterGate::Pass(); }
    static void IdleWait() { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
};

using HeldRecorder = BasicTelemetryRecorder<MemoryPlatform<true>>;
using LiveRecorder = BasicTelemetryRecorder<MemoryPlatform<false>>;

}  // namespace veltor::test
