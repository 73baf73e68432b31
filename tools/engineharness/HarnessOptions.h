#pragma once
#include <string>

#include "settings/EngineSettings.h"
#include "wheel/DeviceGuid.h"

namespace veltor::harness {

struct HarnessOptions {
    EngineSettings settings;
    DeviceGuid device;
    bool deviceGiven = false;  // --device was on the command line
    double seconds = 10.0;   // 0: until the stop file appears
    std::string stopFile;    // the harness stops once this file exists
};

// `--seconds N`, `--stop-file PATH`, `--mode 0|1`, `--device` with 32 hex digits, and any settings field
// as `Key=Value` (switches take 0 or 1). False with a reason for anything else.
bool ParseHarnessOptions(int argc, const char* const* argv, HarnessOptions& options, std::string& error);
// Sets one settings field by its INI key; false for an unknown key or a value that is not a number.
bool SetSettingsField(EngineSettings& settings, const std::string& key, const std::string& value);

}  // namespace veltor::harness
