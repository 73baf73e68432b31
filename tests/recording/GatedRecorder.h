#pragma once
#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "recording/TelemetryRecorder.h"

namespace veltor::test {

// The product's file and clock, and a writer thread held back at its start while `held` is set.
struct GatedPlatform {
    using File = RecordingFile;
    static inline std::atomic<bool> held{false};
    static int64_t Now() { return SteadyNowNanoseconds(); }
    static void EnterWriterThread() {
        while (held.load()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    static void IdleWait() { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
};

using GatedRecorder = BasicTelemetryRecorder<GatedPlatform>;

// The records of a recording file, after its header.
inline std::vector<RecordingSample> ReadRecords(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    std::vector<RecordingSample> records;
    for (size_t at = sizeof(RecordingHeader); at + sizeof(RecordingSample) <= bytes.size();) {
        std::memcpy(&records.emplace_back(), bytes.data() + at, sizeof(RecordingSample));
        at += sizeof(RecordingSample);
    }
    return records;
}

}  // namespace veltor::test
