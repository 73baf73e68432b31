// One start of the real program without a wheel, with an analyzer advice on its command line, driven
// through its profiles, switches, torque box, log window and the commands that need what isn't there; then
// closed, and its INI file read.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "RunningProgram_win32.h"

namespace veltor::test {
namespace {

std::wstring RunValue() {
    wchar_t value[400] = {};
    DWORD bytes = sizeof value;
    const LSTATUS read = RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Run",
                                      L"Veltor", RRF_RT_REG_SZ, nullptr, value, &bytes);
    return read == ERROR_SUCCESS ? value : L"(none)";
}

class ProfileCommands : public OneRun {
protected:
    static void SetUpTestSuite() {
        program = std::make_unique<RunningProgram>(VELTOR_GRIPLINE_EXE);
        advice = program->folder.Path + L"\\advice from the analyzer.ini";
        WriteTextFile(advice,
                      "[Advice]\r\nVersion=1\r\nProfile=Default\r\nCar=mx5 mx52016\r\nHasProfileSettings=1\r\n"
                      "ForceStrength=62\r\nApplyCarForceBalance=0\r\nApplySuspensionTexture=0\r\n"
                      "ApplySuspensionImpactTexture=0\r\nApplySuspensionDetailPriority=0\r\nApplyAbsVibration=0\r\n"
                      "HasCoefficientAdvice=1\r\nYawRateMultiplierTenth=380\r\nApplyYawSteerGain=0\r\n"
                      "ApplyLateralAccelDivisor=0\r\nApplyResistanceGain=0\r\nApplySteerMarginBias=0\r\n");
        started = program->Start(L"--apply-advice \"" + advice + L"\"");
    }

    static inline std::wstring advice;
};

TEST_F(ProfileCommands, AdviceOnTheCommandLineIsAppliedBeforeTheWheelsAreListedAndDeleted) {
    EXPECT_TRUE(program->WaitForLog({L"Analyzer advice applied to profile Default for car mx5 mx52016.\r\n",
                                     L"No force feedback device found.\r\n"}));
    EXPECT_FALSE(FileExists(advice));
    EXPECT_EQ(program->Before(1116, 3), L"Car: mx5 mx52016");
    EXPECT_EQ(program->ValueText(1116), L"38.0");
    EXPECT_EQ(program->ValueText(1101), L"62%");
}

TEST_F(ProfileCommands, CommandsThatNeedAWheelOrTheAnalyzerSaySoAndChangeNothing) {
    const size_t from = program->Log().size();
    program->Press(1001);
    program->Press(1126);
    EXPECT_TRUE(program->WaitForLog({L"Select a force feedback wheel first.\r\n",
                                     L"The Veltor Analyzer executable was not found next to the app.\r\n"},
                                    from));
    EXPECT_EQ(std::tuple(program->Enabled(1001), program->Enabled(1002), program->Enabled(1124)),
              std::tuple(true, false, false));  // Start, Stop, Record
}

TEST_F(ProfileCommands, EachSwitchSaysItsNewStateAndRunOnStartupGoesToTheRunKey) {
    const struct {
        int id;
        const wchar_t* line;
    } flips[] = {
        {1005, L"Parked force reduction disabled."},
        {1006, L"Start minimized enabled."},
        {1011, L"Simucube mode enabled. Stop and Start FFB to apply."},
        {1012, L"Debug logging enabled."},
        {1004, L"Car specific settings disabled."},
        {1004, L"Car specific settings enabled."},
        {1007, L"Run on startup enabled."},
    };
    for (const auto& flip : flips) {
        const size_t from = program->Log().size();
        program->Flip(flip.id);
        EXPECT_TRUE(program->WaitForLog({std::wstring(flip.line) + L"\r\n"}, from)) << flip.id;
    }
    EXPECT_EQ(CompareStringOrdinal(RunValue().c_str(), -1, (L"\"" + program->folder.Exe + L"\"").c_str(), -1, TRUE),
              CSTR_EQUAL) << RunValue();
    const size_t from = program->Log().size();
    program->Flip(1007);
    EXPECT_TRUE(program->WaitForLog({L"Run on startup disabled.\r\n"}, from));
    EXPECT_EQ(RunValue(), L"(none)");
}

TEST_F(ProfileCommands, TorqueBoxTakesTheNumberWhenItLosesTheFocus) {
    const std::pair<const wchar_t*, const wchar_t*> typed[] = {
        {L"7,5", L"7.5"}, {L"0", L""}, {L"1000", L"999.0"}, {L"abc", L""}, {L"12.5x", L"12.5"}};
    for (const auto& [text, shown] : typed) {
        program->Type(1131, text);
        EXPECT_TRUE(program->WaitForText(1131, shown)) << program->Text(1131);
    }
}

TEST_F(ProfileCommands, NewAndSaveUseTheTypedNameToAddRenameOverwriteOrKeep) {
    size_t from = program->Log().size();
    program->Press(1009);
    ASSERT_TRUE(program->WaitForLog({L"New driver profile created.\r\n"}, from));
    EXPECT_EQ(program->Items(1008), (std::vector<std::wstring>{L"Default", L"Driver 2"}));
    EXPECT_EQ(program->Text(1008), L"Driver 2");

    const struct {
        const wchar_t* typed;
        std::vector<std::wstring> names;
        const wchar_t* shown;
    } saves[] = {
        {L" Fast Lap ", {L"Default", L"Fast Lap"}, L"Fast Lap"},
        {L"default", {L"default", L"Fast Lap"}, L"default"},
        {L"", {L"default", L"Fast Lap"}, L"default"},
    };
    for (const auto& save : saves) {
        from = program->Log().size();
        SendMessageW(program->Control(1008), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(save.typed));  // typed; the focus stays
        program->Press(1010);
        // The advice's car is the car seen last: saving stores its settings and coefficients.
        EXPECT_TRUE(program->WaitForLog({L"Car settings and coefficients saved.\r\n"}, from));
        EXPECT_EQ(program->Items(1008), save.names);
        EXPECT_EQ(program->Text(1008), save.shown);
    }

    from = program->Log().size();
    program->Pick(1008, 1);
    EXPECT_TRUE(program->WaitForLog({L"Driver profile loaded.\r\n"}, from));
    program->Key(1100, VK_END);  // into Fast Lap's entry for the car
    EXPECT_TRUE(WaitUntil([] { return program->ValueText(1100) == L"20"; }));
}

TEST_F(ProfileCommands, ClosingSavesProfilesCarEntriesAndOverrides) {
    EXPECT_EQ(program->Close(), 0);
    IniHolding(program->folder, {L"[Profiles]\r\nCount=2\r\nSelected=1", L"[Profile0]\r\nName=default",
                                 L"[Profile1]\r\nName=Fast Lap", L"WheelbaseMaxTorqueTenths=125",
                                 L"[CarProfile1_mx5_mx52016]\r\nExists=1\r\nCar=mx5 mx52016", L"MinForce=20",
                                 L"[Coefficient0]\r\nCar=mx5 mx52016\r\nYawRateMultiplierTenth=380"});
}

}  // namespace
}  // namespace veltor::test
