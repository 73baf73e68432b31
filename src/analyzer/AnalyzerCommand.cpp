#include "analyzer/AnalyzerCommand.h"

#include "analyzer/AdviceFile.h"
#include "analyzer/AnalysisReport.h"

namespace veltor::analyzer {
namespace {

bool Refuse(std::string& error, std::string reason) {
    error = std::move(reason);
    return false;
}

CommandOutcome Failure(int exitCode, std::string message) { return {exitCode, "", std::move(message) + "\n"}; }

std::string AdvisedLines(const Advice& advice) {
    std::string lines;
    for (const AdviceRow& row : advice.rows) {
        if (!row.advised) continue;
        lines += "  " + std::string(row.label) + " " + FormatAdviceValue(row.key, row.now) + " -> " +
                 FormatAdviceValue(row.key, row.proposed) + "\n";
    }
    return lines;
}

CommandOutcome WriteAdvice(const AnalyzerCommand& command, const Advice& advice, const std::string& prefix) {
    const std::string output = Utf8FromPath(command.output);
    if (!HasAdviceToApply(advice)) {
        std::string reasons;
        for (const AdviceRow& row : advice.rows) reasons += "  " + std::string(row.label) + ": " + row.reason + "\n";
        return {kExitNothingToAdvise, "", prefix + "nothing to advise, " + output + " not written\n" + reasons};
    }
    std::string error;
    if (!WriteAdviceFile(command.output, advice, error)) return Failure(kExitCannotWrite, prefix + output + ": " + error);
    return {kExitSuccess, "Advice for profile \"" + advice.profile + "\", car \"" + advice.car + "\" written to " +
                              output + ":\n" + AdvisedLines(advice),
            ""};
}

}  // namespace

bool ParseAnalyzerArguments(const std::vector<std::string>& args, AnalyzerCommand& command, std::string& error) {
    command = AnalyzerCommand{};
    if (args.empty()) {
        command.kind = CommandKind::Open;
        return true;
    }
    const std::string& first = args[0];
    if (first == "--help" || first == "-h") {
        command.kind = CommandKind::Help;
        return args.size() == 1 || Refuse(error, "--help takes nothing more");
    }
    if (first == "--report") {
        if (args.size() != 2) return Refuse(error, "--report takes one file");
        command.kind = CommandKind::Report;
        command.input = PathFromUtf8(args[1]);
        return true;
    }
    if (first == "--advice") {
        if (args.size() != 3) return Refuse(error, "--advice takes a file and the advice file to write");
        command.kind = CommandKind::Advice;
        command.input = PathFromUtf8(args[1]);
        command.output = PathFromUtf8(args[2]);
        return true;
    }
    if (first.starts_with("-")) return Refuse(error, "unknown option " + first);
    if (args.size() != 1) return Refuse(error, "one file at a time");
    command.kind = CommandKind::Open;
    command.input = PathFromUtf8(first);
    return true;
}

std::string UsageText(const std::string& programName) {
    return "usage: " + programName + " [FILE]                   the analysis in a window on Windows, as text elsewhere\n" +
           "       " + programName + " --report FILE            the analysis as text\n" +
           "       " + programName + " --advice FILE OUT.ini    the advice file for Gripline\n" +
           "FILE is a recording (.vtrrec) or a telemetry file (.ibt), which is run through the engine first.\n" +
           "Exit codes: 0 done, 1 usage, 2 unreadable input, 3 advice not writable, 4 nothing to advise.\n";
}

CommandOutcome UsageFailure(const std::string& programName, const std::string& error) {
    return {kExitUsage, "", programName + ": " + error + "\n" + UsageText(programName)};
}

CommandOutcome RunAnalyzer(const std::vector<std::string>& args, const std::string& programName,
                           const SettingsForCar& settingsForCar) {
    AnalyzerCommand command;
    std::string error;
    if (!ParseAnalyzerArguments(args, command, error)) return UsageFailure(programName, error);
    return RunAnalyzerCommand(command, programName, settingsForCar);
}

CommandOutcome RunAnalyzerCommand(const AnalyzerCommand& command, const std::string& programName,
                                  const SettingsForCar& settingsForCar) {
    if (command.kind == CommandKind::Help) return {kExitSuccess, UsageText(programName), ""};
    // Without a window there is nothing to open a file in.
    if (command.input.empty()) return UsageFailure(programName, "no recording or telemetry file given");
    std::string error;
    const std::string prefix = programName + ": " + Utf8FromPath(command.input) + ": ";
    Recording recording;
    if (!OpenForAnalysis(command.input, settingsForCar, recording, error)) return Failure(kExitBadInput, prefix + error);
    const Analysis analysis = AnalyseRecording(recording);
    const Advice advice = BuildAdvice(recording, analysis);
    std::string warnings;
    for (const std::string& warning : ReadingWarnings(recording)) warnings += prefix + "warning: " + warning + "\n";

    CommandOutcome outcome;
    if (command.kind == CommandKind::Advice) {
        outcome = WriteAdvice(command, advice, prefix);
    } else {
        const ReportSource source{Utf8FromPath(command.input.filename()), IsTelemetryFile(command.input)};
        outcome.out = FormatReport(source, recording, analysis, advice);
    }
    outcome.err = warnings + outcome.err;
    return outcome;
}

}  // namespace veltor::analyzer
