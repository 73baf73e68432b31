// Tuning from wheel buttons and the live force meter, in one start of the real program with our simulator
// and the virtual wheel, whose buttons (and a button box's) this test presses through the virtual wheel's
// button file. The tests of this suite follow each other through that one run.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "RunningProgram_win32.h"
#include "SaveDialog_win32.h"
#include "Screenshot_win32.h"
#include "VirtualWheelLog_win32.h"

namespace veltor::test {
namespace {

constexpr wchar_t kSimulatorOptions[] = L"--seconds 240 --quiet --lap-offset 4";
constexpr UINT kWheelButtonsCommand = 0x0110;
constexpr int kStrengthSlider = 1101;
struct DialogRow {
    int text, bind, clear;
};
constexpr DialogRow kUp{2001, 2002, 2003};
constexpr DialogRow kDown{2011, 2012, 2013};
constexpr DialogRow kRecording{2021, 2022, 2023};
constexpr wchar_t kListening[] = L"Press a button on any game controller...";
constexpr wchar_t kBoxGone[] =
    L"Game controller Veltor Virtual Button Box is gone; its button bindings stay until it returns.\r\n";
constexpr wchar_t kBoxBack[] = L"Game controller Veltor Virtual Button Box is back; its buttons work again.\r\n";

std::wstring StrengthLine(int percent) {
    return L"Force strength set to " + std::to_wstring(percent) + L"% from the wheel.\r\n";
}

// The meter's area in client pixels, written out here: 348 px ending 16 px before the right edge, under the
// strip's rule; its bar takes the first 240 px.
RECT MeterBar(const Screenshot& shot) {
    const LONG left = shot.width - 16 - 348;
    return {left, shot.height - 27, left + 240, shot.height};
}
RECT MeterText(const Screenshot& shot) { return {shot.width - 16 - 96, shot.height - 27, shot.width - 16, shot.height}; }

class WheelButtons : public OneRun {
protected:
    static void SetUpTestSuite() {
        program = std::make_unique<RunningProgram>(VELTOR_GRIPLINE_EXE);
        wheelLog = AddVirtualWheel(VELTOR_VIRTUAL_WHEEL_DLL);
        buttonFile = program->folder.Path + L"\\buttons.txt";
        SetEnvironmentVariableW(L"VIRTUALWHEEL_BUTTON_FILE", buttonFile.c_str());
        started = program->Start();
    }

    // A new plan for the virtual controllers; each text differs from the last, so the wheel starts it anew.
    static void Plan(const std::string& plan) {
        static int serial = 0;
        std::ofstream(buttonFile.c_str(), std::ios::binary) << "# " << ++serial << "\n" << plan << "\n";
    }
    static HWND Dialog() { return FindProcessWindow(program->process->info.dwProcessId, L"VeltorWheelButtons"); }
    static std::wstring DialogText(int id) { return WindowText(GetDlgItem(Dialog(), id)); }
    static bool WaitForDialogText(int id, const std::wstring& text) {
        return WaitUntil([&] { return DialogText(id) == text; });
    }
    // Bind, then a press 200 ms later, after Bind's first look at the buttons.
    static bool Bind(const DialogRow& row, const std::string& press, const std::wstring& bound) {
        PostMessageW(GetDlgItem(Dialog(), row.bind), BM_CLICK, 0, 0);
        if (!WaitForDialogText(row.text, kListening)) return false;
        Plan(press + "@200+100");
        return WaitForDialogText(row.text, bound);
    }
    static bool StepFromWheel(const std::string& press, int percent) {
        Plan(press + "@200+100");
        // The slider moves before the line is written.
        return program->WaitForLog({StrengthLine(percent)}) &&
               program->ValueText(kStrengthSlider) == std::to_wstring(percent) + L"%";
    }

    static inline std::wstring buttonFile;
    static inline std::wstring wheelLog;
};

TEST_F(WheelButtons, TheDialogBindsTheNextButtonPressedOnAnyController) {
    PostMessageW(program->window, WM_SYSCOMMAND, kWheelButtonsCommand, 0);
    ASSERT_TRUE(WaitUntil([] { return Dialog() != nullptr && IsWindowVisible(Dialog()); }));
    EXPECT_EQ(WindowText(Dialog()), L"Wheel buttons");
    EXPECT_EQ(DialogText(kUp.text), L"Not bound");
    EXPECT_TRUE(Bind(kUp, "3", L"Veltor Virtual Wheel, button 4"));
    EXPECT_TRUE(Bind(kDown, "box:2", L"Veltor Virtual Button Box, button 3"));
    EXPECT_TRUE(Bind(kRecording, "box:4", L"Veltor Virtual Button Box, button 5"));
    PostMessageW(GetDlgItem(Dialog(), kRecording.clear), BM_CLICK, 0, 0);
    EXPECT_TRUE(WaitForDialogText(kRecording.text, L"Not bound"));
    EXPECT_TRUE(Bind(kRecording, "box:5", L"Veltor Virtual Button Box, button 6"));
    PostMessageW(Dialog(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(WaitUntil([] { return Dialog() == nullptr; }));
}

TEST_F(WheelButtons, APressStepsTheStrengthSliderOnTheWheelAndOnTheButtonBox) {
    EXPECT_EQ(program->ValueText(kStrengthSlider), L"50%");
    EXPECT_TRUE(StepFromWheel("3", 51));
    EXPECT_TRUE(StepFromWheel("box:2", 50));
}

TEST_F(WheelButtons, TheMeterShowsTheForceOnlyWhileTheEngineRuns) {
    Screenshot shot(VELTOR_ARTEFACT_DIR);
    ASSERT_TRUE(shot.Take(program->window, "meter-stopped"));
    EXPECT_EQ(shot.InkIn(MeterBar(shot).left, MeterText(shot).right, shot.height - 27, shot.height).last, -1)
        << "nothing before Start";

    program->Flip(1012);  // debug logging tells when the car is on track
    ASSERT_TRUE(StartSimulator(VELTOR_SIMULATOR_EXE, kSimulatorOptions));
    program->Press(1001);
    ASSERT_TRUE(program->WaitForLog({L"FFB engine started.\r\n", L"Telemetry: On track.\r\n"}));
    // The bar fills in the slider's blue, or red while clipping, under a white peak mark.
    const auto barShows = [&] {
        return shot.Take(program->window, "meter-driving") &&
               shot.CountNear(MeterBar(shot), RGB(0x1C, 0x8E, 0xEC), 40) + shot.CountNear(MeterBar(shot), RGB(0xE6, 0x3C, 0x3C), 40) > 20 &&
               shot.CountNear(MeterBar(shot), RGB(0xE8, 0xEE, 0xF6), 30) > 4;
    };
    EXPECT_TRUE(WaitUntil(barShows)) << shot.png;
    EXPECT_GT(shot.InkIn(MeterText(shot).left, MeterText(shot).right, shot.height - 22, shot.height - 4).last, 0)
        << "the clipping figure";
}

TEST_F(WheelButtons, AnUnpluggedBoxIsToldOnceAndWorksAgainWhenItReturns) {
    Plan("unplug:box@0");
    ASSERT_TRUE(program->WaitForLog({kBoxGone}));
    // The program keeps trying to open it meanwhile.
    std::vector<LogLine> log;
    EXPECT_TRUE(WaitForLog(wheelLog, [](const std::vector<LogLine>& lines) {
        return CountOf(lines, "CreateDevice", "box hr=0x80040154") >= 3;  // DIERR_DEVICENOTREG
    }, log));
    Plan("");
    ASSERT_TRUE(program->WaitForLog({kBoxGone, kBoxBack}));
    EXPECT_EQ(program->CountInLog(kBoxGone), 1u);
    EXPECT_TRUE(StepFromWheel("box:2", 49));
}

TEST_F(WheelButtons, TheRecordingButtonStartsAndStopsARecording) {
    const std::wstring recording = program->folder.Path + L"\\from the wheel.vtrrec";
    Plan("box:5@200+100");
    ASSERT_TRUE(AnswerFileDialog(program->process->info.dwProcessId, recording));
    EXPECT_TRUE(program->WaitForLog({L"Telemetry recording started.\r\n"}));
    Plan("box:5@200+100");
    EXPECT_TRUE(program->WaitForLog({L"Telemetry recording started.\r\n", L"Telemetry recording saved"}));
    EXPECT_TRUE(FileExists(recording));
}

TEST_F(WheelButtons, ClosingSavesTheBindingsAndTheStrength) {
    EXPECT_EQ(program->Close(), 0);
    const std::wstring ini =
        IniHolding(program->folder, {L"[Buttons]", L"StrengthUp={56454C54-5749-4845-454C-000000000001},3",
                                     L"StrengthDown={56454C54-4255-5454-4F4E-424F58000001},2",
                                     L"ToggleRecording={56454C54-4255-5454-4F4E-424F58000001},5"});
    // The car seen on track owns the live record by then.
    EXPECT_NE(ini.find(L"ForceStrength=49", ini.find(L"[CarProfile0_")), std::wstring::npos);
}

}  // namespace
}  // namespace veltor::test
