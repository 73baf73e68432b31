#pragma once
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "analyzer/RecordingReader.h"
#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"

namespace veltor::analyzer {

// What the engine runs a telemetry file with: a profile's settings for the file's car, and the overrides.
struct OfflineSettings {
    std::wstring profileName = L"Default";  // the program's first profile when it has no file
    EngineSettings settings;
    std::vector<CarCoefficients> overrides;
};

// Settings for the car path that the telemetry file's session info names.
using SettingsForCar = std::function<OfflineSettings(std::wstring_view carPath)>;

// True for a file that ends in .ibt, in any case: a telemetry file rather than a recording.
bool IsTelemetryFile(const std::filesystem::path& file);

// Runs the engine's own pipeline over a telemetry file and reads back the recording it made, through a
// temporary file that is removed afterwards. False with a one-line reason when the telemetry file is
// malformed or the recording could not be made whole.
bool RecordTelemetryFile(const std::filesystem::path& file, const SettingsForCar& settingsForCar,
                         Recording& recording, std::string& error);

// A recording as it is, or one made now from a telemetry file.
bool OpenForAnalysis(const std::filesystem::path& file, const SettingsForCar& settingsForCar, Recording& recording,
                     std::string& error);

// A path from UTF-8 text, and back, the same on every platform.
std::filesystem::path PathFromUtf8(const std::string& text);
std::string Utf8FromPath(const std::filesystem::path& path);

}  // namespace veltor::analyzer
