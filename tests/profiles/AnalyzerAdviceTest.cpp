#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "ProfileStoreFolder.h"
#include "TrackingView.h"
#include "profiles/AnalyzerAdvice.h"

namespace veltor {
namespace {

using test::ProfileStoreFolder;
using test::TrackedStore;

bool Parse(const std::wstring& text, AnalyzerAdvice& advice) {
    return ParseAdvice(IniDocument::Parse(L"[Advice]\n" + text), advice);
}

TEST(AnalyzerAdvice, KeysTakeTheirDefaultsUnitsAndNormalForms) {
    AnalyzerAdvice a;
    ASSERT_TRUE(Parse(L"Version= 1 \nProfile=  Driver 1 \nCar= MX5 MX52016 \nHasProfileSettings=7\nSuspensionTexture=40\n"
                      L"ApplyAbsVibration=0\nApplyCarForceBalance=x\nHasCoefficientAdvice=1\nYawSteerGainThousand=5\n"
                      L"ResistanceGainHundred=105\nSteerMarginBiasTenthDeg=-10\nApplyLateralAccelDivisor=0\n",
                      a));
    EXPECT_EQ(a.Profile, L"Driver 1");
    EXPECT_EQ(a.Car, L"mx5 mx52016");
    EXPECT_EQ(a.SuspensionImpactTexture, 40);
    EXPECT_FALSE(a.ApplyAbsVibration);
    EXPECT_TRUE(a.ApplyCarForceBalance);
    EXPECT_FALSE(a.ApplyLateralAccelDivisor);
    EXPECT_EQ(a.YawSteerGain, 0.005f);
    EXPECT_EQ(a.ResistanceGain, 1.05f);
    EXPECT_EQ(a.SteerMarginBias, -10.0f / 572.9578f);
}

class AdviceFile : public ::testing::Test {
protected:
    std::wstring Write(const std::string& text) const {
        std::ofstream(advicePath) << "[Advice]\nVersion=1\n" << text;
        return advicePath.wstring();
    }
    bool AdviceExists() const { return std::filesystem::exists(advicePath); }

    ProfileStoreFolder folder;
    std::filesystem::path advicePath = folder.IniFile().parent_path() / "advice.ini";
    TrackedStore t{folder.IniPath()};
};

TEST_F(AdviceFile, ProfileAdviceForACarTurnsCarSettingsOnAndBecomesTheCarsEntry) {
    t.tracking.ToggleCarSpecific(false);
    t.tracking.ApplyAdviceFile(Write("Profile=Default\nCar=mx5 mx52016\nHasProfileSettings=1\nForceStrength=62\n"
                                     "SuspensionTexture=40\nApplyCarForceBalance=0\nHasCoefficientAdvice=1\n"
                                     "YawRateMultiplierTenth=380\nApplyYawSteerGain=0\nApplyLateralAccelDivisor=0\n"
                                     "ApplyResistanceGain=0\nApplySteerMarginBias=0\n"));
    EXPECT_FALSE(AdviceExists());
    EXPECT_EQ(t.view.LastLog(), L"Analyzer advice applied to profile Default for car mx5 mx52016.");
    EXPECT_TRUE(t.view.shown.UseCarSpecificSettings);
    EXPECT_EQ(t.view.shown.ForceStrength, 62);
    EXPECT_EQ(t.view.published.BumpImpacts, 40);
    EXPECT_EQ(t.store.Profiles[0].Settings.ForceStrength, 50) << "the profile keeps its own values";
    EXPECT_EQ(t.view.carLabel, L"Car: mx5 mx52016");
    EXPECT_EQ(t.view.carSliders, (std::array<int32_t, 5>{380, 0, 96, 90, 100}));

    // Back on the real car, the advised car's entry keeps the live record.
    t.tracking.ChangeSetting(&EngineSettings::Damping, 12);
    t.SeeCar(L"audir8gt3");
    t.SeeCar(L"mx5 mx52016");
    EXPECT_EQ(t.view.shown.Damping, 12);
    EXPECT_EQ(t.view.shown.ForceStrength, 62);
}

TEST_F(AdviceFile, CoefficientAdviceAloneLeavesTheProfilesRecordLive) {
    t.tracking.ToggleCarSpecific(false);
    t.tracking.ApplyAdviceFile(Write("Car=rt2000\nHasCoefficientAdvice=1\nLateralAccelDivisor=200\n"));
    EXPECT_FALSE(t.view.shown.UseCarSpecificSettings);
    EXPECT_EQ(t.store.CurrentCarPath, L"rt2000");
    EXPECT_EQ(t.view.carSliders[2], 130);
    ASSERT_EQ(t.view.publishedOverrides.size(), 1u);
    EXPECT_EQ(t.view.publishedOverrides[0].LateralAccelDivisor, 200.0f);
    EXPECT_EQ(t.view.publishedOverrides[0].YawRateMultiplier, 0.0f) << "applied by default from an absent key";
}

TEST_F(AdviceFile, TheNamedProfileIsFoundTrimmedOrCreatedFromTheSelectedOne) {
    t.tracking.ChangeSetting(&EngineSettings::MinForce, 4);
    const struct {
        const char* profile;
        std::vector<std::wstring> names;
        int32_t selected;
        const wchar_t* logged;
    } cases[] = {
        {"New One", {L"Default", L"New One"}, 1, L"Analyzer advice applied to profile New One."},
        {"  default ", {L"default", L"New One"}, 0, L"Analyzer advice applied to profile default."},
        {"", {L"default", L"New One"}, 0, L"Analyzer advice applied to profile default."},
    };
    for (const auto& c : cases) {
        t.tracking.ApplyAdviceFile(Write(std::string("Profile=") + c.profile +
                                         "\nHasProfileSettings=1\nHasCoefficientAdvice=1\nAbsVibration=3\n"));
        EXPECT_EQ(t.view.profileItems, c.names) << c.profile;
        EXPECT_EQ(t.view.selectedItem, c.selected) << c.profile;
        EXPECT_EQ(t.view.LastLog(), c.logged);
        EXPECT_EQ(t.view.shown.MinForce, 4);
        EXPECT_EQ(t.view.shown.AbsVibration, 3);
    }
    EXPECT_TRUE(t.view.publishedOverrides.empty()) << "coefficients without a car change nothing";
}

// Only version 1 with something to propose is taken; whatever the file, it is gone afterwards, but never the
// store's own file.
TEST_F(AdviceFile, ARefusedFileIsReportedAndDeletedButNeverTheStoresOwnFile) {
    t.tracking.SaveAll();
    const std::wstring advice = advicePath.wstring();
    const struct {
        std::wstring path;
        const char* text;
    } cases[] = {
        {L"", nullptr},
        {advice + L".missing", nullptr},
        {advice, "[Advice]\nHasProfileSettings=1\n"},
        {advice, "[Advice]\nVersion=2\nHasProfileSettings=1\n"},
        {advice, "[Advice]\nVersion=1 x\nHasProfileSettings=1\n"},
        {advice, "[Advice]\nVersion=1\n"},
        {advice, "[Advice]\nVersion=1\nHasProfileSettings=0\nHasCoefficientAdvice=0\n"},
        {advice, "\xFF\xFE\x00\xD8[Advice\x80\n"},
        {folder.IniPath(), nullptr},
    };
    for (const auto& c : cases) {
        if (c.text != nullptr) std::ofstream(advicePath, std::ios::binary) << c.text;
        t.view.log.clear();
        t.tracking.ApplyAdviceFile(c.path);
        EXPECT_EQ(t.view.log, std::vector<std::wstring>{L"Could not load analyzer advice file."})
            << (c.text != nullptr ? c.text : "(no advice file)");
        EXPECT_FALSE(AdviceExists());
    }
    EXPECT_TRUE(std::filesystem::exists(folder.IniFile()));
}

}  // namespace
}  // namespace veltor
