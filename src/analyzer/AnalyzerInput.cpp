#include "analyzer/AnalyzerInput.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

#include "replay/IbtImage.h"
#include "replay/ReplaySession.h"

namespace veltor::analyzer {
namespace {

namespace fs = std::filesystem;

bool ReadWholeFile(const fs::path& file, std::vector<uint8_t>& bytes, std::string& error) {
    std::error_code failure;
    if (!fs::is_regular_file(file, failure)) {
        error = "no such file";
        return false;
    }
    std::ifstream in(file, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        error = "cannot read the file";
        return false;
    }
    return true;
}

// A fresh name in the temporary folder; 64 random bits keep two analyzers apart.
bool TemporaryRecordingPath(fs::path& path, std::string& error) {
    std::error_code failure;
    const fs::path folder = fs::temp_directory_path(failure);
    if (failure) {
        error = "no temporary folder for the recording";
        return false;
    }
    std::random_device random;
    const uint64_t bits = (static_cast<uint64_t>(random()) << 32) ^ random() ^
                          static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    char name[48];
    std::snprintf(name, sizeof name, "veltor-analyzer-%016llx.vtrrec", static_cast<unsigned long long>(bits));
    path = folder / name;
    return true;
}

}  // namespace

std::filesystem::path PathFromUtf8(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end()));
}

std::string Utf8FromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

bool IsTelemetryFile(const std::filesystem::path& file) {
    std::string extension = Utf8FromPath(file.extension());
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return extension == ".ibt";
}

bool RecordTelemetryFile(const std::filesystem::path& file, const SettingsForCar& settingsForCar,
                         Recording& recording, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(file, bytes, error)) return false;
    replay::IbtImage image;
    if (!replay::ParseIbtImage(std::move(bytes), image, error)) {
        error = "not a telemetry file the engine can run: " + error;
        return false;
    }
    replay::ReplayOptions options;
    const SessionIdentity identity = replay::ScanReplayIdentity(options, image);
    OfflineSettings chosen = settingsForCar(identity.carPath);
    options.settings = chosen.settings;
    options.profileName = std::move(chosen.profileName);
    options.overrides = std::move(chosen.overrides);
    fs::path temporary;
    if (!TemporaryRecordingPath(temporary, error)) return false;
    options.recordPath = Utf8FromPath(temporary);

    replay::ReplayResult result;
    bool made = replay::RunReplay(options, identity, image, result, error);
    if (!made) error = "cannot make the recording in the temporary folder";
    if (made && result.droppedSamples > 0) {
        error = "the machine was too busy: " + std::to_string(result.droppedSamples) +
                " records were lost while the recording was made; try again";
        made = false;
    }
    made = made && LoadRecording(temporary, recording, error);
    std::error_code ignored;
    fs::remove(temporary, ignored);
    return made;
}

bool OpenForAnalysis(const std::filesystem::path& file, const SettingsForCar& settingsForCar, Recording& recording,
                     std::string& error) {
    if (IsTelemetryFile(file)) return RecordTelemetryFile(file, settingsForCar, recording, error);
    return LoadRecording(file, recording, error);
}

}  // namespace veltor::analyzer
