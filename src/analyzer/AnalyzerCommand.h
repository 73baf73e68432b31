#pragma once
#include <filesystem>
#include <string>
#include <vector>

#include "analyzer/AnalyzerInput.h"

namespace veltor::analyzer {

constexpr int kExitSuccess = 0;
constexpr int kExitUsage = 1;           // the command line is not understood
constexpr int kExitBadInput = 2;        // the file cannot be read or is no recording or telemetry file
constexpr int kExitCannotWrite = 3;     // the advice file cannot be written
constexpr int kExitNothingToAdvise = 4;  // the recording gives no reason to change a value: no file written

enum class CommandKind {
    Help,
    Open,    // a bare FILE as Gripline passes it, or nothing: the window, or the report where there is none
    Report,  // --report FILE
    Advice,  // --advice FILE OUT.ini
};

struct AnalyzerCommand {
    CommandKind kind = CommandKind::Help;
    std::filesystem::path input;
    std::filesystem::path output;
};

// What a run leaves for the user: text for the output stream, text for the error stream, an exit code.
struct CommandOutcome {
    int exitCode = kExitSuccess;
    std::string out;
    std::string err;
};

// Arguments as UTF-8, without the program's own name. False with a one-line reason.
bool ParseAnalyzerArguments(const std::vector<std::string>& args, AnalyzerCommand& command, std::string& error);

std::string UsageText(const std::string& programName);

// A command line not understood: `error` and the usage, exit code kExitUsage.
CommandOutcome UsageFailure(const std::string& programName, const std::string& error);

// Runs a parsed command without a window (an Open command reports its file as text); messages name
// `programName`.
CommandOutcome RunAnalyzerCommand(const AnalyzerCommand& command, const std::string& programName,
                                  const SettingsForCar& settingsForCar);

// Parses and runs the command line.
CommandOutcome RunAnalyzer(const std::vector<std::string>& args, const std::string& programName,
                           const SettingsForCar& settingsForCar);

}  // namespace veltor::analyzer
