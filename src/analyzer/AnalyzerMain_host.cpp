// veltor-analyzer --report FILE | --advice FILE OUT.ini: the analyzer's command line on Linux.
#include <cstdio>
#include <string>
#include <vector>

#include "analyzer/AnalyzerCommand.h"
#include "analyzer/StoredSettings.h"
#include "profiles/ProfileStore.h"

int main(int argc, char** argv) {
    using namespace veltor::analyzer;
    const std::vector<std::string> args(argv + 1, argv + argc);
    // The telemetry file runs with what Gripline beside us would drive that car with.
    const auto settingsForCar = [](std::wstring_view car) { return StoredSettingsForCar(veltor::IniFilePath(), car); };
    const CommandOutcome outcome = RunAnalyzer(args, "veltor-analyzer", settingsForCar);
    std::fputs(outcome.out.c_str(), stdout);
    std::fputs(outcome.err.c_str(), stderr);
    return outcome.exitCode;
}
