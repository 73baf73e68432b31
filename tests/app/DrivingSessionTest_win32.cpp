// A driving session as a user has it, in four programs under Wine: our simulator playing its synthetic
// drive from the last part of its lap (on track, a freeze, into the pits and off the track at 12 s, then
// another car and driver), the real Gripline.exe with the virtual wheel (which loses input once after each
// opening) and the analyzer beside it, and this test at the controls. The tests of this suite follow each
// other through one run of the program.
#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "RunningProgram_win32.h"
#include "SaveDialog_win32.h"
#include "Screenshot_win32.h"
#include "analyzer/Advice.h"
#include "analyzer/AnalyzerLayout.h"
#include "analyzer/AnalyzerWindow.h"
#include "recording/RecordingHeader.h"

namespace veltor::test {
namespace {

constexpr wchar_t kSimulatorOptions[] = L"--seconds 240 --quiet --lap-offset 44 --freeze-at 6 --freeze-for 2 --swap-identity-at 15";
constexpr wchar_t kWheelFaults[] = L"SetParameters=INPUTLOST@4500+300";
constexpr wchar_t kInputLost[] = L"DirectInput FFB error: 0x8007001E (DIERR_INPUTLOST)\r\n";
constexpr wchar_t kFromProfile[] = L"Using driver profile settings for this car.\r\n";
constexpr uint64_t kRecordsForAdvice = 700;  // past the 600 that the analyzer's advice needs

// The first two texts of the status strip, measured as the rightmost bright pixel of each in a screenshot:
// "iRacing connected" and "On track" are narrower than "iRacing disconnected" and "Not on track".
using StripWidths = std::pair<LONG, LONG>;

bool MeasureStrip(HWND window, const char* name, StripWidths& widths) {
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    if (!shot.Take(window, name)) return false;
    widths = {shot.InkIn(0, 250, shot.height - 22, shot.height - 4).last,
              shot.InkIn(250, 445, shot.height - 22, shot.height - 4).last};
    return true;
}

// The analyzer's window once painted with `titlePart` in its title (its title names the file it shows).
HWND PaintedAnalyzer(const std::wstring& titlePart) { return WaitForPaintedWindow(analyzer::kAnalyzerWindowClass, 0, titlePart); }

bool CloseAnalyzer(HWND analyzer) {
    PostMessageW(analyzer, WM_CLOSE, 0, 0);
    return WaitGone(analyzer);
}

class DrivingSession : public OneRun {
protected:
    static void SetUpTestSuite() {
        program = std::make_unique<RunningProgram>(VELTOR_GRIPLINE_EXE);
        AddVirtualWheel(VELTOR_VIRTUAL_WHEEL_DLL);
        const std::wstring analyzer = program->folder.Path + L"\\Veltor Commercial Analyzer.exe";
        CopyFileW(ProgramPath(VELTOR_ANALYZER_EXE).c_str(), analyzer.c_str(), FALSE);
        SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", kWheelFaults);
        started = program->Start() && MeasureStrip(program->window, "session-before", before);
    }

    // Presses Record and answers the save dialog with a file in the program's folder, or cancels it for an
    // empty name. The proposed name comes back in `proposed`.
    static bool RecordTo(const std::wstring& name, std::wstring& proposed) {
        program->Press(1124);
        return AnswerFileDialog(program->process->info.dwProcessId,
                                name.empty() ? name : program->folder.Path + L"\\" + name, &proposed);
    }

    using Buttons = std::array<bool, 5>;  // Start, Stop, Record, Stop rec, Analyzer
    static Buttons ButtonStates() {
        return {program->Enabled(1001), program->Enabled(1002), program->Enabled(1124), program->Enabled(1125),
                program->Enabled(1126)};
    }

    static inline StripWidths before;
    static inline size_t firstRunEnd = 0;  // the log's length when the first run of the engine had ended
    static inline analyzer::Advice advised;  // what the analyzer proposed for the second recording
    static inline analyzer::AdviceKey untickedKey = analyzer::AdviceKey::ForceStrength;  // none when it stays so
};

TEST_F(DrivingSession, TheWheelIsListedAndTheAnalyzerStartsWithoutARecording) {
    EXPECT_TRUE(program->WaitForLog({L"Force feedback devices found.\r\n"}));
    EXPECT_EQ(program->Text(1000), L"Veltor Virtual Wheel");
    program->Press(1126);
    HWND analyzer = PaintedAnalyzer(analyzer::kAnalyzerTitle);
    ASSERT_NE(analyzer, nullptr);
    EXPECT_EQ(WindowText(analyzer), analyzer::kAnalyzerTitle) << "no file given";
    EXPECT_TRUE(CloseAnalyzer(analyzer));
}

TEST_F(DrivingSession, StartRunsTheEngineOnTheSimulatorAndTheStripFollowsIt) {
    // Tuning before the start, taken in order before the press: debug reports on, full strength, the
    // wheelbase's torque (the recording's header and the INI file show it below).
    program->Flip(1012);
    program->Key(1101, VK_END);
    program->Type(1131, L"7,5");

    ASSERT_TRUE(StartSimulator(VELTOR_SIMULATOR_EXE, kSimulatorOptions));
    program->Press(1001);
    EXPECT_TRUE(program->WaitForLog({L"FFB engine started.\r\n", L"iRacing native FFB suppression enabled.\r\n"}));
    EXPECT_EQ(ButtonStates(), (Buttons{false, true, true, false, true}));
    EXPECT_TRUE(program->WaitForLog({kFromProfile, L"Telemetry: On track.\r\n"}));
    EXPECT_EQ(program->Before(1116, 3), L"Car: bmwm4gt3");

    StripWidths now;
    ASSERT_TRUE(MeasureStrip(program->window, "session-on-track", now));
    EXPECT_LT(now.first, before.first) << "iRacing connected";
    EXPECT_LT(now.second, before.second) << "On track";
}

// A strength far beyond the slider's range, as advice may give it: the slider shows its end, the engine
// runs on the number and clips. How the second start ends and leaves the file is the single instance
// test's.
TEST_F(DrivingSession, AdviceFromASecondInstanceReachesTheRunningEngine) {
    const std::wstring advice = program->folder.Path + L"\\strong.ini";
    ASSERT_TRUE(WriteTextFile(advice, "[Advice]\r\nVersion=1\r\nCar=BMWM4GT3\r\nHasProfileSettings=1\r\n"
                                      "ForceStrength=5000\r\nApplyCarForceBalance=0\r\nApplySuspensionTexture=0\r\n"
                                      "ApplySuspensionImpactTexture=0\r\nApplySuspensionDetailPriority=0\r\n"
                                      "ApplyAbsVibration=0\r\n"));
    Process second(program->folder.Exe, L"--apply-advice \"" + advice + L"\"");
    EXPECT_TRUE(program->WaitForLog({L"Analyzer advice applied to profile Default for car bmwm4gt3.\r\n"}));
    EXPECT_EQ(program->ValueText(1101), L"100%");
}

TEST_F(DrivingSession, ARecordingStartsThroughTheSaveDialogWithTheCarInItsName) {
    std::wstring proposed;
    ASSERT_TRUE(RecordTo(L"first session.vtrrec", proposed));
    EXPECT_EQ(proposed.rfind(L"Veltor_bmwm4gt3_", 0), 0u) << proposed;
    EXPECT_EQ(proposed.size(), std::wstring(L"Veltor_bmwm4gt3_20250101_120000.vtrrec").size()) << proposed;
    EXPECT_TRUE(program->WaitForLog({L"Telemetry recording started.\r\n"}));
    EXPECT_EQ(ButtonStates(), (Buttons{false, true, false, true, false}));
    EXPECT_EQ(program->Text(1124), L"Recording...");
}

TEST_F(DrivingSession, LeavingTheTrackReportsTheStintsClippingAndOutput) {
    EXPECT_TRUE(program->WaitForLog({L"Telemetry: Not on track.\r\n", L"% of samples were clipped\r\n",
                                     L"Consider lowering Force strength to reduce clipping.\r\n",
                                     L"FFB output report: ",
                                     L"Non-zero FFB was sent to DirectInput. If the wheel is still dead, test "
                                     L"DirectInput/Simucube effect compatibility.\r\n"}))
        << program->Log();
}

TEST_F(DrivingSession, ACarChangeStoresTheLiveRecordUnderTheCarItBelongedTo) {
    program->Key(1104, VK_END);  // Damping 100 for the first car
    ASSERT_TRUE(WaitUntil([] { return program->ValueText(1104) == L"100"; }));
    EXPECT_TRUE(WaitUntil([] { return program->Before(1116, 3) == L"Car: porsche992rgt3"; }));
    EXPECT_TRUE(WaitUntil([] { return program->CountInLog(kFromProfile) == 2; }));
    EXPECT_EQ(program->ValueText(1104), L"0");
}

TEST_F(DrivingSession, StopWhileRecordingSavesTheRecordingFirstAndTheStintIsReported) {
    program->Press(1002);
    EXPECT_TRUE(program->WaitForLog({L"Telemetry recording saved", L"FFB engine stopped.\r\n"}));
    EXPECT_EQ(ButtonStates(), (Buttons{true, false, false, false, true}));
    EXPECT_EQ(program->Text(1124), L"Record");
    // The wheel's lost input and the freeze's stall were told while driving. Stop clears the failure stamp,
    // so the wheel's last failure comes out once more after it; a stall is told once however the engine is
    // started and stopped: its line doesn't come back.
    EXPECT_TRUE(program->WaitForLog({kInputLost, L"FFB engine stopped.\r\n", kInputLost}));
    EXPECT_EQ(program->CountInLog(L"Telemetry stalled: force released.\r\n"), 1u) << program->Log();
    firstRunEnd = program->Log().size();

    RecordingHeader header{};  // stays zero without the file, and the magic fails
    std::ifstream(std::filesystem::path(program->folder.Path + L"\\first session.vtrrec"), std::ios::binary)
        .read(reinterpret_cast<char*>(&header), sizeof header);
    EXPECT_STREQ(header.magic, "VTRREC1");
    EXPECT_STREQ(header.profileName, "Default");
    EXPECT_EQ(header.wheelbaseMaxTorque, 7.5f);
}

TEST_F(DrivingSession, ARestartReportsTheWheelsFailureAgainAndStopRecLeavesTheEngineRunning) {
    // The weakest force for the second car, so that the analyzer has a stronger one to propose below.
    program->Key(1101, VK_HOME);
    ASSERT_TRUE(WaitUntil([] { return program->ValueText(1101) == L"0%"; }));
    // Start clears the stamps: the failure count that the engine still shows comes out again at once.
    program->Press(1001);
    EXPECT_TRUE(program->WaitForLog({L"FFB engine started.\r\n", kInputLost}, firstRunEnd)) << program->Log();
    ASSERT_TRUE(program->WaitForLog({L"FFB engine started.\r\n", L"Telemetry: On track.\r\n"}, firstRunEnd));
    std::wstring proposed;
    const size_t beforeCancel = program->Log().size();
    ASSERT_TRUE(RecordTo(L"", proposed));
    EXPECT_EQ(ButtonStates(), (Buttons{false, true, true, false, true}));
    ASSERT_TRUE(RecordTo(L"second session.vtrrec", proposed));
    EXPECT_EQ(proposed.rfind(L"Veltor_porsche992rgt3_", 0), 0u) << proposed;
    ASSERT_TRUE(program->WaitForLog({L"Telemetry recording started.\r\n"}, firstRunEnd)) << program->Log();
    // The cancelled dialog said nothing: the first line about a recording since is the started one.
    const std::wstring log = program->Log();
    const std::wstring meanwhile = log.substr(beforeCancel, log.find(L"Telemetry recording started.", beforeCancel) - beforeCancel);
    EXPECT_EQ(meanwhile.find(L"recording"), std::wstring::npos) << meanwhile;
    const std::wstring recording = program->folder.Path + L"\\second session.vtrrec";
    ASSERT_TRUE(WaitUntil([&] {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        return GetFileAttributesExW(recording.c_str(), GetFileExInfoStandard, &data) &&
               data.nFileSizeLow >= kRecordingHeaderSize + kRecordsForAdvice * kRecordingSampleSize;
    }));
    program->Press(1125);
    EXPECT_TRUE(program->WaitForLog({L"Telemetry recording saved"}, firstRunEnd));
    EXPECT_EQ(ButtonStates(), (Buttons{false, true, true, false, true}));
    EXPECT_EQ(program->Text(1124), L"Record");
}

// The analyzer over the second recording, read back as a user sees it; its advice, where it proposes several
// values with the last one unticked, reaches the running program (and the INI, below).
TEST_F(DrivingSession, TheAnalyzersAdviceReachesTheRunningProgram) {
    analyzer::Recording read;
    std::string error;
    ASSERT_TRUE(analyzer::LoadRecording(program->folder.Path + L"\\second session.vtrrec", read, error)) << error;
    advised = analyzer::BuildAdvice(read, analyzer::AnalyseRecording(read));
    ASSERT_TRUE(advised.rows[0].advised) << advised.rows[0].reason;  // the force strength

    program->Press(1126);
    HWND window = PaintedAnalyzer(L" - second session.vtrrec");
    ASSERT_NE(window, nullptr);
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    ASSERT_TRUE(shot.Take(window, "analyzer-window"));
    std::printf("analyzer window: %s\n", shot.png.c_str());
    EXPECT_GT(shot.CountNear(analyzer::kForcePlotArea, RGB(0x1C, 0x8E, 0xEC), 30), 300) << "the force's trace";
    EXPECT_GT(shot.CountNear(analyzer::kHistogramArea, RGB(0x1C, 0x8E, 0xEC), 30), 300) << "the spread's bars";
    EXPECT_GT(shot.CountNear(analyzer::kGripPlotArea, RGB(0x50, 0xC8, 0x8C), 30), 100) << "the understeer load's trace";

    int boxes = 0;
    for (const analyzer::AdviceRow& row : advised.rows) boxes += row.advised ? 1 : 0;
    EXPECT_NE(GetDlgItem(window, analyzer::kFirstApplyCheckId + boxes - 1), nullptr);
    EXPECT_EQ(GetDlgItem(window, analyzer::kFirstApplyCheckId + boxes), nullptr);
    if (boxes > 1) {
        SendMessageW(GetDlgItem(window, analyzer::kFirstApplyCheckId + boxes - 1), WM_LBUTTONUP, 0, 0);
        for (analyzer::AdviceRow& row : advised.rows) untickedKey = row.advised ? row.key : untickedKey;
    }
    ASSERT_TRUE(IsWindowEnabled(GetDlgItem(window, analyzer::kApplyButtonId)));
    PostMessageW(GetDlgItem(window, analyzer::kApplyButtonId), BM_CLICK, 0, 0);
    EXPECT_TRUE(program->WaitForLog({L"Analyzer advice applied to profile Default for car porsche992rgt3.\r\n"},
                                    firstRunEnd))
        << program->Log();
    EXPECT_EQ(program->ValueText(1101), std::to_wstring(static_cast<int>(advised.rows[0].proposed)) + L"%");
    EXPECT_TRUE(CloseAnalyzer(window));
    program->Press(1002);
    EXPECT_TRUE(program->WaitForLog({L"FFB engine stopped.\r\n"}, firstRunEnd));
}

TEST_F(DrivingSession, ClosingSavesTheDriversTheCarsAndTheTorque) {
    EXPECT_EQ(program->Close(), 0);
    const std::wstring ini =
        IniHolding(program->folder, {L"[DriverIdentity]", L"424242=Synthetic Driver", L"515151=Second Driver",
                                     L"[CarProfile0_bmwm4gt3]", L"Damping=100", L"[CarProfile0_porsche992rgt3]",
                                     L"ForceStrength=100", L"ForceStrength=5000", L"WheelbaseMaxTorqueTenths=75"});
    const std::wstring advisedStrength = L"ForceStrength=" + std::to_wstring(static_cast<int>(advised.rows[0].proposed));
    EXPECT_NE(ini.find(advisedStrength, ini.find(L"[CarProfile0_porsche992rgt3]")), std::wstring::npos);
    // The steering build-up, unticked, left the car without an override.
    if (untickedKey == analyzer::AdviceKey::YawRateMultiplier) {
        EXPECT_EQ(ini.find(L"[Coefficient0]"), std::wstring::npos);
    }
}

}  // namespace
}  // namespace veltor::test
