// The command line as a script sees it: exit codes, messages and the files written.
#include <gtest/gtest.h>

#include <filesystem>

#include "AnalyzerTestFiles.h"
#include "analyzer/AnalyzerCommand.h"

namespace veltor::analyzer {
namespace {

namespace fs = std::filesystem;

CommandOutcome Analyze(const std::vector<std::string>& args) {
    return RunAnalyzer(args, "veltor-analyzer", [](std::wstring_view) { return OfflineSettings{}; });
}

// 20 s at a constant force: 44.4 Nm clips a force strength of 50, 36 Nm sits at 90 % of it.
std::vector<uint8_t> SteadyForce(float torque) {
    std::vector<RecordingSample> samples = test::SampleRecords(1200);
    for (RecordingSample& s : samples) s.mixedTorque = torque;
    return test::RecordingBytes(samples);
}

TEST(RunAnalyzer, AnswersEachCommandLineWithItsExitCodeMessageAndFile) {
    test::TempFolder folder;
    const std::string clipping = (folder.path / "clipping.vtrrec").string();
    const std::string quiet = (folder.path / "quiet.vtrrec").string();
    const std::string junk = (folder.path / "junk.vtrrec").string();
    const std::string junkTelemetry = (folder.path / "junk.IBT").string();
    test::WriteFile(clipping, SteadyForce(44.4f));
    test::WriteFile(quiet, SteadyForce(36.0f));
    test::WriteFile(junk, std::vector<uint8_t>(500, 'x'));
    test::WriteFile(junkTelemetry, std::vector<uint8_t>(500, 'x'));
    const std::string advice = (folder.path / "advice.ini").string();
    const std::string noAdvice = (folder.path / "none.ini").string();
    const std::string unwritable = (folder.path / "missing" / "advice.ini").string();
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        const char* out;  // expected in the output stream
        const char* err;  // expected in the error stream
        std::string file;  // written, or not when `exitCode` is not 0
    };
    const Case cases[] = {
        {{}, kExitUsage, "", "veltor-analyzer: no recording or telemetry file given\nusage:", ""},
        {{"--report"}, kExitUsage, "", "--report takes one file", ""},
        {{"--advice", clipping}, kExitUsage, "", "--advice takes a file and the advice file", ""},
        {{"--frobnicate", clipping}, kExitUsage, "", "unknown option --frobnicate", ""},
        {{clipping, quiet}, kExitUsage, "", "one file at a time", ""},
        {{"--help"}, kExitSuccess, "usage: veltor-analyzer [FILE]", "", ""},
        {{"--report", (folder.path / "absent.vtrrec").string()}, kExitBadInput, "", "absent.vtrrec: no such file", ""},
        {{"--report", junk}, kExitBadInput, "", "junk.vtrrec: not a recording", ""},
        {{"--report", junkTelemetry}, kExitBadInput, "", "not a telemetry file the engine can run", ""},
        {{"--report", clipping}, kExitSuccess, "50 -> 41     the 99.5th percentile of the force, 44.4 Nm, is 111 %", "", ""},
        {{clipping}, kExitSuccess, "Profile      Driver 1\n", "", ""},
        {{"--advice", clipping, advice}, kExitSuccess, "Force strength 50 -> 41\n", "", advice},
        {{"--advice", quiet, noAdvice}, kExitNothingToAdvise, "", "nothing to advise, " , noAdvice},
        {{"--advice", clipping, unwritable}, kExitCannotWrite, "", "cannot write the advice file", unwritable},
    };
    for (const Case& c : cases) {
        const std::string what = c.args.empty() ? "(none)" : c.args[0] + " ...";
        const CommandOutcome outcome = Analyze(c.args);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << what << "\n" << outcome.err;
        EXPECT_NE(outcome.out.find(c.out), std::string::npos) << what << "\n" << outcome.out;
        EXPECT_NE(outcome.err.find(c.err), std::string::npos) << what << "\n" << outcome.err;
        if (!c.file.empty()) {
            EXPECT_EQ(fs::exists(c.file), c.exitCode == kExitSuccess) << what;
        }
    }
}

}  // namespace
}  // namespace veltor::analyzer
