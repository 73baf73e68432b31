#include "HarnessOptions.h"

#include "settings/EngineSettings.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace veltor::harness {
namespace {

bool ParseGuid(const std::string& text, DeviceGuid& guid) {
    if (text.size() != 2 * sizeof guid.bytes) return false;
    for (size_t i = 0; i < sizeof guid.bytes; ++i) {
        char* end = nullptr;
        const std::string pair = text.substr(2 * i, 2);
        guid.bytes[i] = static_cast<uint8_t>(std::strtoul(pair.c_str(), &end, 16));
        if (*end != '\0') return false;
    }
    return true;
}

bool ParseSeconds(const std::string& text, double& seconds) {
    char* end = nullptr;
    seconds = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && seconds >= 0.0;
}

}  // namespace

bool SetSettingsField(EngineSettings& settings, const std::string& key, const std::string& value) {
    int32_t number = 0;
    return ParseSettingInteger(value, number) && SetSettingByKey(settings, key, number);
}

bool ParseHarnessOptions(int argc, const char* const* argv, HarnessOptions& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const size_t equals = arg.find('=');
        if (equals != std::string::npos && arg.rfind("--", 0) != 0) {
            if (!SetSettingsField(options.settings, arg.substr(0, equals), arg.substr(equals + 1))) {
                error = "unknown setting or bad value: " + arg;
                return false;
            }
            continue;
        }
        if (i + 1 >= argc) {
            error = "missing value after " + arg;
            return false;
        }
        const std::string value = argv[++i];
        bool ok = true;
        if (arg == "--seconds") {
            ok = ParseSeconds(value, options.seconds);
        } else if (arg == "--stop-file") {
            options.stopFile = value;
        } else if (arg == "--mode") {
            ok = SetSettingsField(options.settings, "Mode", value);
        } else if (arg == "--device") {
            ok = ParseGuid(value, options.device);
            options.deviceGiven = ok;
        } else {
            ok = false;
        }
        if (!ok) {
            error = "bad option or value: " + arg + " " + value;
            return false;
        }
    }
    return true;
}

}  // namespace veltor::harness
