#include "ReplayOptions.h"

#include "settings/EngineSettings.h"

#include <cstdint>
#include <string_view>

namespace veltor::replay {
namespace {

// The value of the option at argv[i], moving i past it.
bool TakeValue(int argc, const char* const* argv, int& i, std::string& value, std::string& error) {
    if (i + 1 >= argc) {
        error = std::string("missing value after ") + argv[i];
        return false;
    }
    value = argv[++i];
    return true;
}

}  // namespace

bool ApplySetting(const std::string& assignment, EngineSettings& settings, std::string& error) {
    const size_t equals = assignment.find('=');
    const std::string_view key = std::string_view(assignment).substr(0, equals);
    int32_t value = 0;
    if (equals == std::string::npos ||
        !ParseSettingInteger(std::string_view(assignment).substr(equals + 1), value)) {
        error = "--set needs Key=Integer, got " + assignment;
        return false;
    }
    if (SetSettingByKey(settings, key, value)) return true;
    error = "unknown setting " + std::string(key);
    return false;
}

bool ParseReplayArguments(int argc, const char* const* argv, ReplayOptions& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        std::string value;
        if (option != "--ibt" && option != "--csv" && option != "--record" && option != "--car" &&
            option != "--mode" && option != "--set") {
            error = "unknown option " + std::string(option);
            return false;
        }
        if (!TakeValue(argc, argv, i, value, error)) return false;
        if (option == "--ibt") {
            options.ibtPath = value;
        } else if (option == "--csv") {
            options.csvPath = value;
        } else if (option == "--record") {
            options.recordPath = value;
        } else if (option == "--car") {
            options.carPath = value;
            options.hasCar = true;
        } else if (option == "--mode") {
            if (value != "0" && value != "1") {
                error = "--mode takes 0 or 1, got " + value;
                return false;
            }
            options.settings.Mode = value == "1" ? 1 : 0;
        } else if (!ApplySetting(value, options.settings, error)) {
            return false;
        }
    }
    if (options.ibtPath.empty() || options.csvPath.empty()) {
        error = "usage: replay --ibt FILE [--mode 0|1] [--set Key=Value]... [--car PATH] --csv OUT [--record OUT.vtrrec]";
        return false;
    }
    return true;
}

}  // namespace veltor::replay
