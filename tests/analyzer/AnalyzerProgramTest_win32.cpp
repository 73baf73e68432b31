// "Veltor Commercial Analyzer.exe" started as a script starts it, its output redirected to a file, and as a
// user starts it on a file that is no recording.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "AnalyzerTestFiles.h"
#include "ChildProcess_win32.h"
#include "ProgramWindow_win32.h"
#include "analyzer/AnalyzerLayout.h"

namespace {

namespace fs = std::filesystem;

struct Finished {
    DWORD exitCode = 0xFFFFFFFF;
    std::string output;
};

Finished RunAnalyzerProgram(const std::wstring& arguments, const fs::path& outputFile) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE output = CreateFileW(outputFile.wstring().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    Finished finished;
    if (output == INVALID_HANDLE_VALUE) return {finished.exitCode, "cannot create the output file"};
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
    } else {
        const DWORD error = GetLastError();
        CloseHandle(output);
        return {finished.exitCode, "cannot start the program: error " + std::to_string(error)};
    }
    CloseHandle(output);
    std::stringstream text;
    text << std::ifstream(outputFile, std::ios::binary).rdbuf();
    finished.output = text.str();
    return finished;
}

// The command lines themselves are the host tests'; here, that the GUI program's text reaches the output a
// script redirected, and its exit code the script.
TEST(AnalyzerProgram, PrintsToARedirectedOutputAndEndsWithItsExitCode) {
    veltor::test::TempFolder folder;
    const fs::path recording = folder.path / "drive.vtrrec";
    const std::vector<uint8_t> bytes = veltor::test::RecordingBytes(veltor::test::SampleRecords(100));
    std::ofstream(recording, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const Finished report = RunAnalyzerProgram(L"--report \"" + recording.wstring() + L"\"", folder.path / "report");
    EXPECT_EQ(report.exitCode, 0u) << report.output;
    EXPECT_NE(report.output.find("\nProfile      Driver 1\n"), std::string::npos) << report.output;
    const Finished usage = RunAnalyzerProgram(L"--report", folder.path / "usage");
    EXPECT_EQ(usage.exitCode, 1u);
    EXPECT_NE(usage.output.find("--report takes one file\nusage:"), std::string::npos) << usage.output;
}

// The window stays empty and says why; nothing to apply or save, and it closes with exit code 0.
TEST(AnalyzerProgram, AFileThatIsNoRecordingShowsWhyInAnEmptyWindow) {
    veltor::test::TempFolder folder;
    const fs::path junk = folder.path / "junk.vtrrec";
    std::ofstream(junk, std::ios::binary) << "not a recording";
    veltor::test::Process analyzer(veltor::test::ProgramPath(VELTOR_ANALYZER_PATH), L"\"" + junk.wstring() + L"\"");
    HWND window = veltor::test::WaitForPaintedWindow(veltor::analyzer::kAnalyzerWindowClass);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(veltor::test::WindowText(window), veltor::analyzer::kAnalyzerTitle);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, veltor::analyzer::kApplyButtonId)));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, veltor::analyzer::kSaveAdviceButtonId)));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(analyzer.WaitForExit(), 0);
}

}  // namespace
