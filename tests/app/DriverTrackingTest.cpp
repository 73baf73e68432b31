#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ProfileStoreFolder.h"
#include "TrackingView.h"
#include "app/CommandLine.h"
#include "profiles/IniEncoding.h"

namespace veltor {
namespace {

using test::ProfileStoreFolder;
using test::TrackingView;

// A store over a file of its own (holding `bytes`, if any), loaded as at start-up, with the view on it.
struct TrackedStore {
    explicit TrackedStore(const std::string& bytes = "") {
        if (!bytes.empty()) folder.Write(bytes);
        store.LoadCoefficients();
        store.LoadProfiles();
        tracking.RefreshProfileList();
        tracking.UpdateCarPanel(store.CurrentCarPath);
    }
    void SeeCar(const std::wstring& carPath) {
        EngineStatus status;
        status.carPath = carPath;
        tracking.PollStatus(status);
    }

    ProfileStoreFolder folder;
    ProfileStore store{folder.IniPath()};
    TrackingView view;
    DriverTracking<TrackingView> tracking{store, view};
};

TEST(DriverTracking, ACarWithoutAnEntryStartsFromTheProfileAndKeepsWhatWasChangedForItsNextVisit) {
    TrackedStore t;
    const std::array<int32_t, 5> unmatched{400, 0, 90, 100, 100};
    EXPECT_EQ(t.view.carLabel, L"Car: generic (unknown)");
    EXPECT_EQ(t.view.carSliders, unmatched);
    t.tracking.ChangeSetting(&EngineSettings::Understeer, 5);
    EXPECT_EQ(t.store.Profiles[0].Settings.Understeer, 5) << "without a car the profile owns the live record";

    t.SeeCar(L" BMWM4GT3 ");
    EXPECT_EQ(t.view.LastLog(), L"Using driver profile settings for this car.");
    EXPECT_EQ(t.view.carLabel, L"Car: bmwm4gt3");
    EXPECT_EQ(t.view.carSliders, (std::array<int32_t, 5>{375, 0, 82, 100, 100}));
    t.tracking.ChangeSetting(&EngineSettings::ForceStrength, 80);
    EXPECT_EQ(t.store.Profiles[0].Settings.ForceStrength, 50) << "the car entry owns the live record";

    t.SeeCar(L"porsche992rgt3");
    EXPECT_EQ(t.view.LastLog(), L"Using driver profile settings for this car.");
    EXPECT_EQ(t.view.shown.ForceStrength, 50);
    t.SeeCar(L"bmwm4gt3");
    EXPECT_EQ(t.view.LastLog(), L"Car specific settings loaded.");
    EXPECT_EQ(t.view.published.ForceStrength, 80);

    const size_t lines = t.view.log.size();
    for (const wchar_t* nothing : {L"generic", L"", L"  "}) t.SeeCar(nothing);
    EXPECT_EQ(t.view.log.size(), lines);
    EXPECT_EQ(t.store.CurrentCarPath, L"bmwm4gt3");
    EXPECT_EQ(t.view.carLabel, L"Car: bmwm4gt3");
}

// Unticked, the driver profile owns the live record and a car change moves only the car panel; ticked again,
// the car's entry is back.
TEST(DriverTracking, CarSpecificCheckboxHandsTheRecordToTheProfileUntilTickedAgain) {
    TrackedStore t;
    t.SeeCar(L"mx5 mx52016");
    t.tracking.ChangeSetting(&EngineSettings::Bumps, 70);  // the car's entry
    t.tracking.ToggleCarSpecific(false);
    EXPECT_EQ(t.view.LastLog(), L"Car specific settings disabled.");
    EXPECT_EQ(t.view.shown.Bumps, 20);
    EXPECT_FALSE(t.store.Profiles[0].Settings.UseCarSpecificSettings);

    t.tracking.ChangeSetting(&EngineSettings::Damping, 30);
    const int publications = t.view.settingsPublications;
    t.view.log.clear();
    t.SeeCar(L"mystery car");
    EXPECT_TRUE(t.view.log.empty());
    EXPECT_EQ(t.view.settingsPublications, publications);
    EXPECT_EQ(t.store.CurrentSettings.Damping, 30);
    EXPECT_EQ(t.view.carLabel, L"Car: mystery car (unknown)");
    t.tracking.ChangeSetting(&EngineSettings::Damping, 40);
    EXPECT_EQ(t.store.Profiles[0].Settings.Damping, 40) << "the driver profile still owns the live record";

    t.SeeCar(L"mx5 mx52016");
    t.tracking.ToggleCarSpecific(true);
    EXPECT_EQ(t.view.LastLog(), L"Car specific settings enabled.");
    EXPECT_EQ(t.view.shown.Bumps, 70);
    EXPECT_TRUE(t.view.published.UseCarSpecificSettings);
    EXPECT_TRUE(t.store.Profiles[0].Settings.UseCarSpecificSettings);
}

TEST(DriverTracking, NewProfileWhileACarOwnsTheRecordStartsFromTheCarsValues) {
    TrackedStore t("[Profiles]\nCount=2\n[Profile1]\nName=Driver 3\n");
    t.SeeCar(L"audir8gt3");
    t.tracking.ChangeSetting(&EngineSettings::OversteerOffset, 33);
    t.tracking.NewProfile();
    EXPECT_EQ(t.view.profileItems, (std::vector<std::wstring>{L"Driver 1", L"Driver 3", L"Driver 4"}));
    EXPECT_EQ(t.store.Profiles[2].Settings.OversteerOffset, 33);
    EXPECT_EQ(t.store.Profiles[0].Settings.OversteerOffset, 0);
    EXPECT_EQ(t.store.CurrentSettings.OversteerOffset, 33);
}

// The wheelbase is the driver's: the torque goes to the driver profile even while a car owns the record.
TEST(DriverTracking, TorqueBoxGoesToTheDriverProfileWhateverOwnsTheLiveRecord) {
    TrackedStore t;
    t.SeeCar(L"audir8gt3");
    for (const auto& [typed, tenths] : {std::pair{L"0.01", 10}, std::pair{L"7,5", 75}, std::pair{L"x", 0}}) {
        t.view.torqueText = typed;
        t.tracking.ApplyTorqueField();
        EXPECT_EQ(t.view.published.WheelbaseMaxTorqueTenths, tenths);
        EXPECT_EQ(t.store.Profiles[0].Settings.WheelbaseMaxTorqueTenths, tenths);
    }
}

TEST(DriverTracking, CoefficientSlidersStoreAnOverrideOnlyForARealCar) {
    TrackedStore t;
    t.tracking.OnCoefficientSlider(*FindCoefficientRow(1120), 90);
    EXPECT_EQ(t.store.ActiveCoefficients.SteerMarginBias, -10.0f / kCoefficientTenthDegreesPerRadian);
    EXPECT_EQ(t.view.overridePublications, 1);
    EXPECT_TRUE(t.view.publishedOverrides.empty());
    t.SeeCar(L"rt2000");
    t.tracking.OnCoefficientSlider(*FindCoefficientRow(1117), 5);
    ASSERT_EQ(t.view.publishedOverrides.size(), 1u);
    EXPECT_EQ(t.view.publishedOverrides[0].CarPath, L"rt2000");
    EXPECT_EQ(t.view.publishedOverrides[0].YawSteerGain, 0.005f);
    EXPECT_EQ(t.view.publishedOverrides[0].YawRateMultiplier, 25.0f) << "the others stay the catalogue's";
}

TEST(DriverTracking, DriverIdentityIsWrittenWhenTheNameChangesBeyondCaseAndAFailedWriteIsSaidOnce) {
    TrackedStore t;
    EngineStatus status;
    status.driverUserId = 321;
    const struct {
        const wchar_t* name;
        bool known;
        const wchar_t* stored;
    } polls[] = {{L"A Driver", true, L"A Driver"}, {L"a DRIVER", true, L"A Driver"},
                 {L"Unknown", true, L"A Driver"}, {L"B Driver", false, L"A Driver"}, {L"B Driver", true, L"B Driver"}};
    for (const auto& poll : polls) {
        status.driverName = poll.name;
        status.driverNameKnown = poll.known;
        t.tracking.PollStatus(status);
        EXPECT_NE(DecodeIniBytes(t.folder.Read()).find(L"321=" + std::wstring(poll.stored)), std::wstring::npos);
    }
    EXPECT_TRUE(t.view.log.empty());

    t.folder.SetReadOnly(true);
    status.driverName = L"C Driver";
    for (int i = 0; i < 3; ++i) t.tracking.PollStatus(status);
    EXPECT_EQ(t.view.log, std::vector<std::wstring>{L"Could not save profiles to " + t.folder.IniPath() + L"."});
    EXPECT_EQ(t.tracking.DriverDisplayName(status), L"C Driver");
}

TEST(DriverTracking, EachEventPublishesWhatTheEngineNeeds) {
    TrackedStore t;
    t.store.Profiles.push_back({L"Second", {}});
    using Step = void (*)(TrackedStore&);
    const struct {
        const char* event;
        Step step;
        int settings;
        int overrides;
    } rows[] = {
        {"settings slider", [](TrackedStore& s) { s.tracking.ChangeSetting(&EngineSettings::Damping, 5); }, 1, 0},
        {"car slider", [](TrackedStore& s) { s.tracking.OnCoefficientSlider(*FindCoefficientRow(1116), 300); }, 0, 1},
        {"torque box", [](TrackedStore& s) { s.tracking.ApplyTorqueField(); }, 1, 0},
        {"profile list", [](TrackedStore& s) { s.tracking.SelectProfile(1); }, 1, 0},
        {"profile list, no item", [](TrackedStore& s) { s.tracking.SelectProfile(-1); }, 0, 0},
        {"new profile, no car", [](TrackedStore& s) { s.tracking.NewProfile(); }, 0, 0},
        {"save, no car", [](TrackedStore& s) { s.tracking.SaveProfile(); }, 0, 0},
        {"first car", [](TrackedStore& s) { s.SeeCar(L"c6r"); }, 1, 0},
        {"new profile with a car", [](TrackedStore& s) { s.tracking.NewProfile(); }, 1, 0},
        {"save with a car", [](TrackedStore& s) { s.tracking.SaveProfile(); }, 1, 1},
    };
    for (const auto& row : rows) {
        const int settings = t.view.settingsPublications;
        const int overrides = t.view.overridePublications;
        row.step(t);
        EXPECT_EQ(t.view.settingsPublications - settings, row.settings) << row.event;
        EXPECT_EQ(t.view.overridePublications - overrides, row.overrides) << row.event;
    }
}

TEST(DriverTracking, DriverDisplayNamePrefersTheStoredNameThenAKnownNameThenTheAccount) {
    TrackedStore t("[DriverIdentity]\n321=  Stored Name \n");
    struct Case {
        const wchar_t* name;
        int32_t id;
        bool known;
        const wchar_t* shown;
    };
    const Case cases[] = {{L"Live", 321, true, L"Stored Name"}, {L"Live", 5, true, L"Live"},
                          {L"UNKNOWN", 5, true, L"account #5"}, {L"Live", 5, false, L"account #5"},
                          {L"", 0, true, L""},                  {L"unknown", -2, true, L"unknown"}};
    for (const Case& c : cases) {
        EngineStatus status;
        status.driverName = c.name;
        status.driverUserId = c.id;
        status.driverNameKnown = c.known;
        EXPECT_EQ(t.tracking.DriverDisplayName(status), c.shown) << c.name << c.id;
    }
}

// The advice file a second start hands over comes from its command line.
TEST(CommandLine, AdvicePathIsTheArgumentBehindTheFirstOptionThatHasOne) {
    const struct {
        std::vector<std::wstring> arguments;
        const wchar_t* path;
    } cases[] = {
        {{L"Gripline.exe"}, L""},
        {{L"Gripline.exe", L"--apply-advice", L"C:\\a.ini"}, L"C:\\a.ini"},
        {{L"Gripline.exe", L"--APPLY-Advice", L"C:\\a.ini"}, L"C:\\a.ini"},
        {{L"Gripline.exe", L"--apply-advice"}, L""},
        {{L"Gripline.exe", L"x", L"--apply-advice", L"a.ini", L"--apply-advice", L"b.ini"}, L"a.ini"},
        {{L"--apply-advice", L"a.ini"}, L""},  // the program's own name is not an option
        {{L"Gripline.exe", L"--apply-advicex", L"a.ini"}, L""},
        {{L"Gripline.exe", L"--apply-advİce", L"a.ini"}, L""},  // only A to Z fold
    };
    for (const auto& c : cases) EXPECT_EQ(FindAdvicePath(c.arguments), c.path) << c.arguments.size();
}


class AdviceFile : public ::testing::Test {
protected:
    std::wstring Write(const std::string& text) const {
        std::ofstream(advicePath) << "[Advice]\nVersion=1\n" << text;
        return advicePath.wstring();
    }
    bool AdviceExists() const { return std::filesystem::exists(advicePath); }

    TrackedStore t;
    std::filesystem::path advicePath = t.folder.path / "advice.ini";
};

// Each key's unit and Apply flag are the settings tables' test; here the normal forms, the impact texture
// following the road's, and where the merged values go.
TEST_F(AdviceFile, ProfileAdviceForACarTurnsCarSettingsOnAndBecomesTheCarsEntry) {
    t.tracking.ToggleCarSpecific(false);
    t.tracking.ApplyAdviceFile(Write("Profile=  Default \nCar= MX5 MX52016 \nHasProfileSettings=7\nForceStrength=62\n"
                                     "SuspensionTexture=40\nApplyCarForceBalance=0\nHasCoefficientAdvice=1\n"
                                     "YawRateMultiplierTenth=380\nYawSteerGainThousand=5\nResistanceGainHundred=105\n"
                                     "SteerMarginBiasTenthDeg=-10\nApplyLateralAccelDivisor=0\n"));
    EXPECT_FALSE(AdviceExists());
    EXPECT_EQ(t.view.LastLog(), L"Analyzer advice applied to profile Default for car mx5 mx52016.");
    EXPECT_TRUE(t.view.shown.UseCarSpecificSettings);
    EXPECT_EQ(t.view.shown.ForceStrength, 62);
    EXPECT_EQ(t.view.shown.CarForceBalance, 100);
    EXPECT_EQ(t.view.published.BumpImpacts, 40);
    EXPECT_EQ(t.store.Profiles[0].Settings.ForceStrength, 50) << "the profile keeps its own values";
    EXPECT_EQ(t.view.carLabel, L"Car: mx5 mx52016");
    EXPECT_EQ(t.view.carSliders, (std::array<int32_t, 5>{380, 5, 96, 105, 90}));
    EXPECT_EQ(t.view.publishedOverrides.size(), 1u);

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
        {t.folder.IniPath(), nullptr},
    };
    for (const auto& c : cases) {
        if (c.text != nullptr) std::ofstream(advicePath, std::ios::binary) << c.text;
        t.view.log.clear();
        t.tracking.ApplyAdviceFile(c.path);
        EXPECT_EQ(t.view.log, std::vector<std::wstring>{L"Could not load analyzer advice file."})
            << (c.text != nullptr ? c.text : "(no advice file)");
        EXPECT_FALSE(AdviceExists());
    }
    EXPECT_TRUE(std::filesystem::exists(t.folder.IniFile()));
}

}  // namespace
}  // namespace veltor
