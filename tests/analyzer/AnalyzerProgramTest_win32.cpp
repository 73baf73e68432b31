// "Veltor Commercial Analyzer.exe" started as a script starts it: its output redirected to a file.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "AnalyzerTestFiles.h"
#include "ChildProcess_win32.h"

namespace {

namespace fs = std::filesystem;

struct Finished {
    DWORD exitCode = 0xFFFFFFFF;
    std::string output;
};

Finished RunAnalyzerProgram(const std::wstring& arguments, const fs::path& outputFile) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE output = CreateFileW(outputFile.wstring().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    Finished finished;
    if (output == INVALID_HANDLE_VALUE) return finished;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = output;
    std::wstring line = L"\"" + veltor::test::ProgramPath(VELTOR_ANALYZER_PATH) + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        if (WaitForSingleObject(process.hProcess, veltor::test::kStartTimeoutMs) == WAIT_OBJECT_0) {
            GetExitCodeProcess(process.hProcess, &finished.exitCode);
        }
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(output);
    std::stringstream text;
    text << std::ifstream(outputFile, std::ios::binary).rdbuf();
    finished.output = text.str();
    return finished;
}

TEST(AnalyzerProgram, PrintsToARedirectedOutputAndEndsWithItsExitCode) {
    veltor::test::TempFolder folder;
    const fs::path recording = folder.path / "drive.vtrrec";
    const fs::path junk = folder.path / "junk.vtrrec";
    const std::vector<uint8_t> bytes = veltor::test::RecordingBytes(veltor::test::SampleRecords(100));
    std::ofstream(recording, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::ofstream(junk, std::ios::binary) << "not a recording at all";
    const struct {
        std::wstring arguments;
        DWORD exitCode;
        const char* output;
    } cases[] = {
        {L"--report \"" + recording.wstring() + L"\"", 0, "\nProfile      Driver 1\n"},
        {L"--advice \"" + recording.wstring() + L"\" \"" + (folder.path / "advice.ini").wstring() + L"\"", 4,
         "only 100 records: 600 (10 s) needed for advice"},
        {L"--report \"" + junk.wstring() + L"\"", 2, "junk.vtrrec: too short for a recording header"},
        {L"--report", 1, "--report takes one file\nusage:"},
    };
    int run = 0;
    for (const auto& c : cases) {
        // A file of its own each time: Wine may close a finished child's copy of the handle late.
        const Finished finished = RunAnalyzerProgram(c.arguments, folder.path / ("output" + std::to_string(++run)));
        EXPECT_EQ(finished.exitCode, c.exitCode) << finished.output;
        EXPECT_NE(finished.output.find(c.output), std::string::npos) << c.output << " in:\n" << finished.output;
    }
}

}  // namespace
