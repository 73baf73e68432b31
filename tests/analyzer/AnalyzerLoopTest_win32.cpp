// The loop a driver goes through, in four programs under Wine: our simulator's synthetic drive, Gripline.exe
// with the virtual wheel and the real analyzer beside it, and this test at the controls. A recording made
// through the save dialog opens in the analyzer, whose window is read back as a user sees it; its advice,
// with one value unticked, reaches the running program and, after the close, the INI file.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ChildProcess_win32.h"
#include "RunningProgram_win32.h"
#include "SaveDialog_win32.h"
#include "Screenshot_win32.h"
#include "analyzer/Advice.h"
#include "analyzer/AnalyzerLayout.h"
#include "analyzer/AnalyzerWindow.h"
#include "analyzer/RecordingReader.h"

namespace veltor::test {
namespace {

using namespace veltor::analyzer;

constexpr wchar_t kSimulatorOptions[] = L" --seconds 240 --quiet --lap-offset 3";
constexpr uint64_t kRecordsForAdvice = 700;  // past the 600 that advice needs

// The analyzer's window once painted with `titlePart` in its title; null if that did not come in time.
HWND PaintedAnalyzer(const std::wstring& titlePart) {
    const ULONGLONG until = GetTickCount64() + kWindowTimeoutMs;
    do {
        HWND found = FindWindowW(kAnalyzerWindowClass, nullptr);
        if (found != nullptr && IsPainted(found) && WindowText(found).find(titlePart) != std::wstring::npos) return found;
        Sleep(20);
    } while (GetTickCount64() < until);
    return nullptr;
}

// Pixels of the plot colour inside a rectangle of the analyzer's client area.
int CountNear(const Screenshot& shot, const LayoutRect& area, COLORREF colour) {
    int count = 0;
    for (LONG y = area.top; y < area.bottom; ++y) {
        for (LONG x = area.left; x < area.right; ++x) {
            const COLORREF c = shot.At(x, y);
            if (std::abs(GetRValue(c) - GetRValue(colour)) + std::abs(GetGValue(c) - GetGValue(colour)) +
                    std::abs(GetBValue(c) - GetBValue(colour)) < 60) {
                ++count;
            }
        }
    }
    return count;
}

TEST(AnalyzerLoop, ARecordingOpensInTheAnalyzerAndItsAdviceReachesTheRunningProgram) {
    RunningProgram program(VELTOR_GRIPLINE_EXE);
    const std::wstring& folder = program.folder.Path;
    ASSERT_TRUE(CopyFileW(WindowsPath(VELTOR_VIRTUAL_WHEEL_DLL).c_str(), (folder + L"\\dinput8.dll").c_str(), FALSE));
    ASSERT_TRUE(CopyFileW(WindowsPath(VELTOR_ANALYZER_EXE).c_str(), (folder + L"\\Veltor Commercial Analyzer.exe").c_str(),
                          FALSE));
    ASSERT_TRUE(program.Start()) << "no painted window";
    Child simulator(L"\"" + WindowsPath(VELTOR_SIMULATOR_EXE) + L"\"" + kSimulatorOptions, folder + L"\\simulator.txt");
    ASSERT_TRUE(simulator.started);

    program.Flip(1012);  // debug logging: the log tells when the car is on track
    program.Press(1001);
    ASSERT_TRUE(program.WaitForLog({L"FFB engine started.\r\n", L"Telemetry: On track.\r\n"})) << program.Log();
    const std::wstring recording = folder + L"\\drive.vtrrec";
    program.Press(1124);
    ASSERT_TRUE(AnswerFileDialog(program.process->info.dwProcessId, recording));
    ASSERT_TRUE(program.WaitForLog({L"Telemetry recording started.\r\n"}));
    ASSERT_TRUE(program.WaitUntil([&] {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        return GetFileAttributesExW(recording.c_str(), GetFileExInfoStandard, &data) &&
               data.nFileSizeLow >= kRecordingHeaderSize + kRecordsForAdvice * kRecordingSampleSize;
    }));
    program.Press(1125);
    ASSERT_TRUE(program.WaitForLog({L"Telemetry recording saved.\r\n"}));

    // What the analyzer should propose, from the same file through the same core.
    Recording read;
    std::string error;
    ASSERT_TRUE(LoadRecording(recording, read, error)) << error;
    const Advice expected = BuildAdvice(read, AnalyseRecording(read));
    ASSERT_TRUE(expected.rows[0].advised) << expected.rows[0].reason;  // the force strength

    program.Press(1126);
    HWND analyzer = PaintedAnalyzer(L"drive.vtrrec");
    ASSERT_NE(analyzer, nullptr);
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    ASSERT_TRUE(shot.Take(analyzer, "analyzer-window")) << "screenshot";
    std::printf("analyzer window: %s\n", shot.png.c_str());
    EXPECT_GT(CountNear(shot, kForcePlotArea, RGB(0x1C, 0x8E, 0xEC)), 300) << "the force's trace";
    EXPECT_GT(CountNear(shot, kHistogramArea, RGB(0x1C, 0x8E, 0xEC)), 300) << "the spread's bars";
    EXPECT_GT(CountNear(shot, kGripPlotArea, RGB(0x50, 0xC8, 0x8C)), 100) << "the understeer load's trace";

    // One box for each proposed value, all ticked; where there are several, the last one is unticked before
    // the advice goes.
    int advised = 0;
    for (const AdviceRow& row : expected.rows) advised += row.advised ? 1 : 0;
    EXPECT_NE(GetDlgItem(analyzer, kFirstApplyCheckId + advised - 1), nullptr);
    EXPECT_EQ(GetDlgItem(analyzer, kFirstApplyCheckId + advised), nullptr);
    const AdviceRow* unticked = nullptr;
    if (advised > 1) {
        for (const AdviceRow& row : expected.rows) unticked = row.advised ? &row : unticked;
        SendMessageW(GetDlgItem(analyzer, kFirstApplyCheckId + advised - 1), WM_LBUTTONUP, 0, 0);
    }
    ASSERT_TRUE(IsWindowEnabled(GetDlgItem(analyzer, kApplyButtonId)));
    PostMessageW(GetDlgItem(analyzer, kApplyButtonId), BM_CLICK, 0, 0);

    EXPECT_TRUE(program.WaitForLog({L"Analyzer advice applied to profile Default for car bmwm4gt3.\r\n"}))
        << program.Log();
    const std::wstring strength = std::to_wstring(static_cast<int>(expected.rows[0].proposed));
    EXPECT_EQ(program.ValueText(1101), strength + L"%");
    PostMessageW(analyzer, WM_CLOSE, 0, 0);
    EXPECT_TRUE(program.WaitUntil([&] { return !IsWindow(analyzer); }));
    program.Press(1002);
    EXPECT_TRUE(program.WaitForLog({L"FFB engine stopped.\r\n"}));
    ASSERT_EQ(program.Close(), 0);

    const std::wstring ini = IniText(program.folder);
    EXPECT_NE(ini.find(L"[CarProfile0_bmwm4gt3]"), std::wstring::npos) << std::string(ini.begin(), ini.end());
    EXPECT_NE(ini.find(L"ForceStrength=" + strength + L"\r\n"), std::wstring::npos);
    // The unticked value was left out: with the steering build-up unticked, no override for the car.
    if (unticked != nullptr && unticked->key == AdviceKey::YawRateMultiplier) {
        EXPECT_EQ(ini.find(L"[Coefficient0]"), std::wstring::npos) << std::string(ini.begin(), ini.end());
    }
}

// A file the analyzer cannot read leaves an empty window that says why; nothing to apply, and it closes
// with exit code 0.
TEST(AnalyzerLoop, AFileThatIsNoRecordingShowsWhyInAnEmptyWindow) {
    wchar_t temp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temp);
    const std::wstring junk = temp + std::wstring(L"veltor_junk_") + std::to_wstring(GetCurrentProcessId()) + L".vtrrec";
    ASSERT_TRUE(WriteTextFile(junk, "not a recording"));
    Process analyzer(WindowsPath(VELTOR_ANALYZER_EXE), L"\"" + junk + L"\"");
    HWND window = PaintedAnalyzer(kAnalyzerTitle);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(WindowText(window), kAnalyzerTitle);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, kApplyButtonId)));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, kSaveAdviceButtonId)));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(analyzer.WaitForExit(), 0);
    DeleteFileW(junk.c_str());
}

}  // namespace
}  // namespace veltor::test
