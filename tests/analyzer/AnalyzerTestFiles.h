#pragma once
// Recordings and folders the analyzer's tests build on.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ProfileStoreFolder.h"
#include "engine/RecordingHook.h"
#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace veltor::test {

inline RecordingHeader SampleHeader() {
    return MakeRecordingHeader(L"bmwm4gt3", L"Test Driver", L"Driver 1", EngineSettings{}, kUnmatchedCarRow,
                               1700000000000ull);
}

// `n` records 1/60 s apart with tick counts from 0: a car at 30 m/s, nothing clipped.
inline std::vector<RecordingSample> SampleRecords(size_t n) {
    std::vector<RecordingSample> samples(n);
    for (size_t i = 0; i < n; ++i) {
        samples[i].timeMicroseconds = i * 16667;
        samples[i].tickCount = static_cast<int32_t>(i);
        samples[i].speed = 30.0f;
        samples[i].velocityX = 30.0f;
        samples[i].fullScaleTorque = 40.0f;
    }
    return samples;
}

inline std::vector<uint8_t> RecordingBytes(const std::vector<RecordingSample>& samples,
                                           const RecordingHeader& header = SampleHeader()) {
    std::vector<uint8_t> bytes(sizeof header + samples.size() * sizeof(RecordingSample));
    std::memcpy(bytes.data(), &header, sizeof header);
    if (!samples.empty()) std::memcpy(bytes.data() + sizeof header, samples.data(), samples.size() * sizeof samples[0]);
    return bytes;
}

inline void WriteFile(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}

// A fresh folder, removed with everything in it; the program's store would lie there as IniFile().
using TempFolder = ProfileStoreFolder;

}  // namespace veltor::test
