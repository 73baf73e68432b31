// "Veltor Commercial Analyzer.exe" started as a script starts it, its output redirected to a file, and as a
// user starts it on a file that is no recording.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>

#include "AnalyzerTestFiles.h"
#include "ProgramWindow_win32.h"
#include "analyzer/AnalyzerLayout.h"

namespace veltor::test {
namespace {

const std::wstring kAnalyzer = ProgramPath(VELTOR_ANALYZER_PATH);

// The command lines themselves are the host tests'; here, that the GUI program's text reaches the output a
// script redirected, and its exit code the script.
TEST(AnalyzerProgram, PrintsToARedirectedOutputAndEndsWithItsExitCode) {
    TempFolder folder;
    const std::filesystem::path recording = folder.path / "drive.vtrrec";
    const std::vector<uint8_t> bytes = RecordingBytes(SampleRecords(100));
    std::ofstream(recording, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const Process report(kAnalyzer, L"--report \"" + recording.wstring() + L"\"", (folder.path / "report").wstring());
    EXPECT_EQ(report.WaitForExit(), 0) << report.Output();
    EXPECT_NE(report.Output().find("\nProfile      Driver 1\n"), std::string::npos) << report.Output();
    const Process usage(kAnalyzer, L"--report", (folder.path / "usage").wstring());
    EXPECT_EQ(usage.WaitForExit(), 1);
    EXPECT_NE(usage.Output().find("--report takes one file\nusage:"), std::string::npos) << usage.Output();
}

// The window stays empty and says why; nothing to apply or save, and it closes with exit code 0.
TEST(AnalyzerProgram, AFileThatIsNoRecordingShowsWhyInAnEmptyWindow) {
    TempFolder folder;
    const std::filesystem::path junk = folder.path / "junk.vtrrec";
    std::ofstream(junk, std::ios::binary) << "not a recording";
    Process program(kAnalyzer, L"\"" + junk.wstring() + L"\"");
    HWND window = WaitForPaintedWindow(analyzer::kAnalyzerWindowClass);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(WindowText(window), analyzer::kAnalyzerTitle);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, analyzer::kApplyButtonId)));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, analyzer::kSaveAdviceButtonId)));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(program.WaitForExit(), 0);
}

}  // namespace
}  // namespace veltor::test
