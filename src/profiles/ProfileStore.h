#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profiles/IniDocument.h"
#include "profiles/IniFile.h"
#include "settings/ButtonActions.h"
#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"

namespace veltor {

struct DriverProfile {
    std::wstring Name;
    EngineSettings Settings;
};

// The settings of one car under one driver profile.
struct CarProfile {
    int32_t ProfileIndex = 0;  // a position in Profiles: it names the file's section
    std::wstring CarPath;      // normalized
    EngineSettings Settings;   // UseCarSpecificSettings is set in every entry
};

// "Veltor_profiles.ini" in the executable's folder.
std::wstring IniFilePath();

// Everything remembered between two runs: driver profiles, car settings, coefficient overrides and driver
// identities, kept in one INI file. GUI thread only.
//
// The file is read into memory once and again whenever it changes on disk. Every save reads it afresh,
// applies its writes to it and replaces it whole through a temporary file, so a crash leaves the old file or
// the new one, and keys that another writer added meanwhile stay. A write that could not reach the disk stays
// visible to reads and goes out with the next save.
class ProfileStore {
public:
    ProfileStore() : ProfileStore(IniFilePath()) {}
    explicit ProfileStore(std::wstring iniPath) : Path(std::move(iniPath)) {}

    std::vector<DriverProfile> Profiles;
    std::vector<CarProfile> CarProfiles;  // only the entries touched in this run
    std::vector<CarCoefficients> CoefficientOverrides;
    int32_t SelectedProfile = 0;
    EngineSettings CurrentSettings;
    std::wstring CurrentCarPath;
    CarCoefficients ActiveCoefficients = CarCoefficients::FromRow(L"generic", kUnmatchedCarRow);
    ButtonBindings Bindings;  // the wheel buttons' actions, in the order of their rows

    const std::wstring& IniPath() const { return Path; }

    void LoadProfiles();
    void LoadCoefficients();
    void LoadButtonBindings();
    // Everything, into the file at once. False when the file could not be replaced (read-only, locked, disk
    // full, or a file that exists but could not be read, now or at load); memory keeps it all and the next
    // save retries.
    bool SaveAll();

    int32_t FindProfileByName(std::wstring_view name) const;
    int32_t FindCarProfile(int32_t profileIndex, std::wstring_view carPath) const;
    bool CarSectionExists(int32_t profileIndex, std::wstring_view carPath);
    EngineSettings GetCarSettings(int32_t profileIndex, std::wstring_view carPath, const EngineSettings& fallback);
    void PutCarSettings(int32_t profileIndex, std::wstring_view carPath, const EngineSettings& settings);
    void WriteCarProfiles(IniDocument& ini) const;

    int32_t FindCoefficients(std::wstring_view normalizedCarPath) const;
    CarCoefficients GetCoefficients(std::wstring_view carPath) const;
    void PutCoefficients(const CarCoefficients& coefficients);
    bool IsKnownCar(std::wstring_view carPath) const;
    void WriteCoefficients(IniDocument& ini) const;
    void WriteButtonBindings(IniDocument& ini) const;

    // The name stored for an iRacing user id, trimmed; empty for none or an id below 1.
    std::wstring LookUpDriverIdentity(int32_t userId);
    // Stores the name for the user id in the file at once. False when the file could not be replaced.
    bool WriteDriverIdentity(int32_t userId, std::wstring_view name);

    // Does the live record belong to a car entry?
    bool CarSettingsActive() const;
    // Copies the live record to whichever holder owns it.
    void SyncCurrentSettings();

private:
    const IniDocument& File();
    bool Commit(const IniDocument& writes);

    std::wstring Path;
    IniDocument Ini;         // the file as last read, with Unsaved on top
    IniFileStamp IniStamp;
    bool IniLoaded = false;
    bool IniReadFailed = false;      // the file exists but its last reading failed
    bool LoadMissedTheFile = false;  // a start-up load ran while the file couldn't be read
    IniDocument Unsaved;             // writes that have not reached the disk yet
};

}  // namespace veltor
