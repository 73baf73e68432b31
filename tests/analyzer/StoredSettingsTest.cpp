// A telemetry file runs with what the program beside the analyzer would drive its car with.
#include <gtest/gtest.h>

#include <fstream>

#include "AnalyzerTestFiles.h"
#include "GripDrive.h"
#include "IbtFileWriter.h"
#include "SessionInfoText.h"
#include "analyzer/StoredSettings.h"

namespace veltor::analyzer {
namespace {

// Two profiles, the second selected and keeping settings per car, with an entry and an override for the
// simulator's car "bmwm4gt3".
constexpr char kStore[] =
    "[Profiles]\r\nCount=2\r\nSelected=1\r\n"
    "[Profile0]\r\nName=Default\r\nForceStrength=50\r\n"
    "[Profile1]\r\nName=Anna\r\nForceStrength=70\r\nUseCarSpecificSettings=1\r\n"
    "[CarProfile1_bmwm4gt3]\r\nExists=1\r\nForceStrength=80\r\n"
    "[Coefficients]\r\nCount=1\r\n"
    "[Coefficient0]\r\nCar=bmwm4gt3\r\nYawRateMultiplierTenth=300\r\nLateralAccelDivisor=75\r\n";

TEST(StoredSettingsForCar, TakesTheSelectedProfileItsCarEntryAndTheOverridesOrTheDefaults) {
    test::TempFolder folder;
    const std::filesystem::path ini = folder.IniFile();
    std::ofstream(ini, std::ios::binary) << kStore;
    const struct {
        const wchar_t* car;
        const std::filesystem::path file;
        const wchar_t* profile;
        int32_t forceStrength;
        size_t overrides;
    } cases[] = {
        {L"BMWM4GT3", ini, L"Anna", 80, 1},
        {L"mx5 mx52016", ini, L"Anna", 70, 1},
        {L"generic", ini, L"Anna", 70, 1},
        {L"bmwm4gt3", folder.path / "absent.ini", L"Default", 50, 0},
    };
    for (const auto& c : cases) {
        const OfflineSettings chosen = StoredSettingsForCar(c.file.wstring(), c.car);
        EXPECT_EQ(chosen.profileName, c.profile) << c.car;
        EXPECT_EQ(chosen.settings.ForceStrength, c.forceStrength) << c.car;
        EXPECT_EQ(chosen.overrides.size(), c.overrides) << c.car;
    }

    const std::filesystem::path drive = folder.path / "drive.ibt";
    test::WriteFile(drive,
                    sim::MakeIbtFile(sim::MakeGripDrive({}, 2.0), sim::BuildSessionInfo(sim::IdentityCase::Plain, 0)));
    Recording recording;
    std::string error;
    const auto settingsForCar = [&](std::wstring_view car) { return StoredSettingsForCar(ini.wstring(), car); };
    ASSERT_TRUE(RecordTelemetryFile(drive, settingsForCar, recording, error)) << error;
    EXPECT_EQ(HeaderText(recording.header.profileName), "Anna");
    EXPECT_EQ(recording.header.ForceStrength, 80);
    EXPECT_EQ(recording.header.YawRateMultiplier, 30.0f);
    EXPECT_EQ(recording.header.LateralAccelDivisor, 75.0f);
    EXPECT_EQ(std::filesystem::file_size(ini), sizeof kStore - 1) << "the store is only read";
}

}  // namespace
}  // namespace veltor::analyzer
