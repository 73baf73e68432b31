#pragma once
#include <string>
#include <vector>

#include "settings/EngineSettings.h"
#include "settings/CarCoefficients.h"

namespace veltor::replay {

// replay --ibt FILE [--mode 0|1] [--set Key=Value]... [--car PATH] --csv OUT [--record OUT.vtrrec]
struct ReplayOptions {
    std::string ibtPath;
    std::string csvPath;
    std::string recordPath;  // empty: no recording
    std::string carPath;     // used when hasCar
    bool hasCar = false;
    EngineSettings settings;  // the defaults, then --mode and each --set in the order given
    std::wstring profileName = L"Replay";     // goes into the recording's header
    std::vector<CarCoefficients> overrides;  // the engine's coefficient overrides; none from the command line
};

// False with a one-line reason for a missing or unknown option, an unknown key or a value that is no integer.
bool ParseReplayArguments(int argc, const char* const* argv, ReplayOptions& options, std::string& error);

// Sets one settings field by its INI key name from an integer text.
bool ApplySetting(const std::string& assignment, EngineSettings& settings, std::string& error);

}  // namespace veltor::replay
