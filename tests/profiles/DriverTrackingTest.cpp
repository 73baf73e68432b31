#include <gtest/gtest.h>

#include <string>

#include "ProfileStoreFolder.h"
#include "TrackingView.h"
#include "profiles/IniEncoding.h"

namespace veltor {
namespace {

using test::ProfileStoreFolder;
using test::TrackedStore;

TEST(DriverTracking, ACarWithoutAnEntryStartsFromTheProfileAndKeepsWhatWasChangedForItsNextVisit) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    const std::array<int32_t, 5> unmatched{400, 0, 90, 100, 100};
    EXPECT_EQ(t.view.carLabel, L"Car: generic (unknown)");
    EXPECT_EQ(t.view.carSliders, unmatched);

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

TEST(DriverTracking, WithCarSettingsOffACarChangeMovesOnlyTheCarPanel) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    t.tracking.ToggleCarSpecific(false);
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
}

TEST(DriverTracking, CarSpecificCheckboxTakesTheCarEntryAndGivesItBack) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    t.SeeCar(L"mx5 mx52016");
    t.tracking.ChangeSetting(&EngineSettings::Bumps, 70);  // the car's entry

    t.tracking.ToggleCarSpecific(false);
    EXPECT_EQ(t.view.LastLog(), L"Car specific settings disabled.");
    EXPECT_EQ(t.view.shown.Bumps, 20);
    EXPECT_FALSE(t.store.Profiles[0].Settings.UseCarSpecificSettings);

    t.tracking.ToggleCarSpecific(true);
    EXPECT_EQ(t.view.LastLog(), L"Car specific settings enabled.");
    EXPECT_EQ(t.view.shown.Bumps, 70);
    EXPECT_TRUE(t.view.published.UseCarSpecificSettings);
    EXPECT_TRUE(t.store.Profiles[0].Settings.UseCarSpecificSettings);
}

TEST(DriverTracking, NewProfileWhileACarOwnsTheRecordStartsFromTheCarsValues) {
    ProfileStoreFolder folder;
    folder.Write("[Profiles]\nCount=2\n[Profile1]\nName=Driver 3\n");
    TrackedStore t(folder.IniPath());
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
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    t.SeeCar(L"audir8gt3");
    for (const auto& [typed, tenths] : {std::pair{L"0.01", 10}, std::pair{L"7,5", 75}, std::pair{L"x", 0}}) {
        t.view.torqueText = typed;
        t.tracking.ApplyTorqueField();
        EXPECT_EQ(t.view.published.WheelbaseMaxTorqueTenths, tenths);
        EXPECT_EQ(t.store.Profiles[0].Settings.WheelbaseMaxTorqueTenths, tenths);
    }
}

TEST(DriverTracking, CoefficientSlidersStoreAnOverrideOnlyForARealCar) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    t.tracking.OnCoefficientSlider(1120, 90);
    EXPECT_EQ(t.store.ActiveCoefficients.SteerMarginBias, -10.0f / 572.9578f);
    EXPECT_EQ(t.view.overridePublications, 1);
    EXPECT_TRUE(t.view.publishedOverrides.empty());
    t.SeeCar(L"rt2000");
    t.tracking.OnCoefficientSlider(1117, 5);
    ASSERT_EQ(t.view.publishedOverrides.size(), 1u);
    EXPECT_EQ(t.view.publishedOverrides[0].CarPath, L"rt2000");
    EXPECT_EQ(t.view.publishedOverrides[0].YawSteerGain, 0.005f);
    EXPECT_EQ(t.view.publishedOverrides[0].YawRateMultiplier, 25.0f) << "the others stay the catalogue's";
}

TEST(DriverTracking, DriverIdentityIsWrittenWhenTheNameChangesBeyondCaseAndAFailedWriteIsSaidOnce) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
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
        EXPECT_NE(DecodeIniBytes(folder.Read()).find(L"321=" + std::wstring(poll.stored)), std::wstring::npos);
    }
    EXPECT_TRUE(t.view.log.empty());

    folder.SetReadOnly(true);
    status.driverName = L"C Driver";
    for (int i = 0; i < 3; ++i) t.tracking.PollStatus(status);
    EXPECT_EQ(t.view.log, std::vector<std::wstring>{L"Could not save profiles to " + folder.IniPath() + L"."});
    EXPECT_EQ(t.store.DriverDisplayName(status), L"C Driver");
}

TEST(DriverTracking, EachEventPublishesWhatTheEngineNeeds) {
    ProfileStoreFolder folder;
    TrackedStore t(folder.IniPath());
    t.store.Profiles.push_back({L"Second", {}});
    using Step = void (*)(TrackedStore&);
    const struct {
        const char* event;
        Step step;
        int settings;
        int overrides;
    } rows[] = {
        {"settings slider", [](TrackedStore& s) { s.tracking.ChangeSetting(&EngineSettings::Damping, 5); }, 1, 0},
        {"car slider", [](TrackedStore& s) { s.tracking.OnCoefficientSlider(1116, 300); }, 0, 1},
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

}  // namespace
}  // namespace veltor
