#include "HourRecording.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <vector>

#include "engine/RecordingHook.h"

namespace veltor::bench {
namespace {

constexpr int64_t kChunkRecords = 6000;

RecordingSample HourRecord(int64_t i) {
    const double t = static_cast<double>(i) / 60.0;
    RecordingSample s;
    s.timeMicroseconds = static_cast<uint64_t>(i) * 16667;
    s.tickCount = static_cast<int32_t>(i);
    s.speed = s.velocityX = static_cast<float>(36.0 + 24.0 * std::sin(t / 7.5));
    s.latAccel = static_cast<float>(10.0 * std::sin(t / 2.1));
    s.yawRate = s.latAccel / s.speed;
    s.steeringWheelAngle = 38.0f * s.yawRate / s.speed + s.latAccel / 84.0f;
    s.steerExcess = std::fmod(t, 60.0) < 6.0 ? 0.1f : -0.05f;
    s.baseTorque = 3.2f * s.latAccel;
    s.textureTorque = static_cast<float>(0.8 * std::sin(t * 150.0));
    s.mixedTorque = s.baseTorque + s.textureTorque;
    s.fullScaleTorque = 40.0f;
    s.crashGain = 1.0f;
    s.clipped = std::fabs(s.mixedTorque) > 40.0f ? 1 : 0;
    s.priorityActed = std::fabs(s.textureTorque) > 0.7f ? 1 : 0;
    s.absActive = std::fmod(t, 45.0) < 1.5 ? 1 : 0;
    return s;
}

}  // namespace

std::filesystem::path WriteHourRecording(const std::filesystem::path& folder) {
    const std::filesystem::path file = folder / "hour.vtrrec";
    RecordingHeader header = MakeRecordingHeader(L"bmwm4gt3", L"Bench Driver", L"Driver 1", EngineSettings{},
                                                 CarRow{37.5f, 0.0f, 82.0f, 1.0f, 0.0f}, 1700000000000ull);
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    std::vector<RecordingSample> chunk;
    for (int64_t i = 0; i < kHourRecords; i += kChunkRecords) {
        chunk.clear();
        for (int64_t k = i; k < std::min(i + kChunkRecords, kHourRecords); ++k) chunk.push_back(HourRecord(k));
        out.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(chunk.size() * sizeof chunk[0]));
    }
    return file;
}

}  // namespace veltor::bench
