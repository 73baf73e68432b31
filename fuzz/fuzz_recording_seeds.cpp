// Seeds for the recording reader: a header alone, a short recording, a cut one, and 15 s of cornering
// with grip so that mutation starts inside the fit. Usage: fuzz_recording_seeds DIR
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"

namespace {

using namespace veltor;

void WriteSeed(const std::string& path, const RecordingHeader& header, const std::vector<RecordingSample>& samples,
               size_t cut) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) return;
    std::fwrite(&header, sizeof header, 1, f);
    std::fwrite(samples.data(), sizeof(RecordingSample), samples.size(), f);
    std::fwrite(samples.data(), 1, cut, f);
    std::fclose(f);
}

std::vector<RecordingSample> Cornering(size_t count) {
    std::vector<RecordingSample> samples(count);
    for (size_t i = 0; i < count; ++i) {
        RecordingSample& s = samples[i];
        const float t = static_cast<float>(i) / 60.0f;
        s.timeMicroseconds = i * 16667;
        s.tickCount = static_cast<int32_t>(i);
        s.speed = s.velocityX = 30.0f + 20.0f * std::sin(t / 7.0f);
        s.latAccel = 9.0f * std::sin(t / 2.0f);
        s.yawRate = s.latAccel / s.speed;
        s.steeringWheelAngle = 40.0f * s.yawRate / s.speed + s.latAccel / 90.0f;
        s.steerExcess = -0.1f;
        s.mixedTorque = s.baseTorque = 0.75f * s.latAccel;
        s.textureTorque = 0.3f * std::sin(t * 40.0f);
        s.fullScaleTorque = 40.0f;
        s.clipped = i % 97 == 0;
        s.priorityActed = i % 13 == 0;
        s.absActive = i % 300 < 20;
    }
    return samples;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::string dir = argv[1];
    RecordingHeader header;
    std::memcpy(header.magic, "VTRREC1", 8);
    header.version = 2;
    header.headerSize = kRecordingHeaderSize;
    header.recordSize = kRecordingSampleSize;
    header.tickRate = 60;
    std::memcpy(header.carPath, "bmwm4gt3", 9);
    std::memcpy(header.profileName, "Driver 1", 9);
    header.ForceStrength = 50;
    header.Bumps = header.BumpImpacts = 20;
    header.SuspensionDetailPriority = 50;
    header.YawRateMultiplier = 37.5f;
    header.LateralAccelDivisor = 82.0f;
    WriteSeed(dir + "/header-only", header, {}, 0);
    WriteSeed(dir + "/short", header, Cornering(5), 0);
    WriteSeed(dir + "/cut", header, Cornering(5), 50);
    WriteSeed(dir + "/grip", header, Cornering(900), 0);
    return 0;
}
