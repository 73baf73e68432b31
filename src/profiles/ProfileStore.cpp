#include "profiles/ProfileStore.h"

#include <algorithm>

#include "settings/CarCatalogue.h"
#include "profiles/ExecutablePath.h"
#include "profiles/IniEncoding.h"
#include "profiles/ProfileText.h"
#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

// The platform reads a name into 128 characters and the Exists mark into 8.
constexpr size_t kNameBufferChars = 128;
constexpr size_t kExistsBufferChars = 8;
constexpr size_t kBindingBufferChars = 64;  // a binding's text takes 42 characters at most

bool IsIndexInto(int32_t index, size_t size) { return index >= 0 && static_cast<size_t>(index) < size; }

}  // namespace

std::wstring IniFilePath() {
    std::wstring path = ExecutablePath();
    const size_t slash = path.find_last_of(L"\\/");
    if (slash != std::wstring::npos) path.resize(slash + 1);
    return path + L"Veltor_profiles.ini";
}

const IniDocument& ProfileStore::File() {
    const IniFileStamp now = StampIniFile(Path);
    if (IniLoaded && now == IniStamp) return Ini;
    std::string bytes;
    IniReadFailed = ReadIniFile(Path, bytes, IniStamp) == IniFileRead::Failed;
    Ini = IniDocument::Parse(DecodeIniBytes(bytes));
    Ini.Apply(Unsaved);
    IniLoaded = true;
    return Ini;
}

// Reads the file afresh so that keys another writer put there meanwhile stay. Never replaces a file that
// exists but cannot be read, nor one whose profiles the start-up load couldn't read (locked then, say): the
// defaults in memory would take their place.
bool ProfileStore::Commit(const IniDocument& writes) {
    std::string bytes;
    IniFileStamp stamp;
    const IniFileRead read = ReadIniFile(Path, bytes, stamp);
    IniDocument next = IniDocument::Parse(DecodeIniBytes(bytes));
    next.Apply(Unsaved);
    next.Apply(writes);
    const bool replaceable = read == IniFileRead::Missing || (read == IniFileRead::Read && !LoadMissedTheFile);
    const std::string encoded = replaceable ? EncodeIniText(next.Serialize()) : std::string();
    // A file too large to be read back would lose every profile at the next start: it is not written.
    const bool saved = replaceable && encoded.size() <= kMaxIniFileBytes && ReplaceIniFile(Path, encoded);
    if (saved) {
        Unsaved = IniDocument();
        stamp = StampIniFile(Path);
    } else {
        Unsaved.Apply(writes);
    }
    Ini = std::move(next);
    IniStamp = stamp;
    IniLoaded = true;
    IniReadFailed = read == IniFileRead::Failed;
    return saved;
}

void ProfileStore::LoadProfiles() {
    const IniDocument& ini = File();
    LoadMissedTheFile = LoadMissedTheFile || IniReadFailed;
    Profiles.clear();
    const int32_t count = ReadSectionCount(ini, L"Profiles", L"Profile");
    if (count < 1) {
        Profiles.push_back({L"Default", CurrentSettings});
        SelectedProfile = 0;
        return;
    }
    Profiles.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        const std::wstring section = L"Profile" + DecimalText(i);
        std::wstring name = ini.GetString(section, L"Name", L"Driver " + DecimalText(i + 1), kNameBufferChars);
        Profiles.push_back({std::move(name), ReadSettings(ini, section, CurrentSettings)});
    }
    SelectedProfile = std::max(std::min(ReadIniInt(ini, L"Profiles", L"Selected", 0), count - 1), 0);
    CurrentSettings = Profiles[static_cast<size_t>(SelectedProfile)].Settings;
}

bool ProfileStore::SaveAll() {
    SyncCurrentSettings();
    IniDocument writes;
    writes.SetString(L"Profiles", L"Count", DecimalText(Profiles.size()));
    writes.SetString(L"Profiles", L"Selected", DecimalText(SelectedProfile));
    for (size_t i = 0; i < Profiles.size(); ++i) {
        const std::wstring section = L"Profile" + DecimalText(i);
        writes.SetString(section, L"Name", Profiles[i].Name);
        WriteSettings(writes, section, Profiles[i].Settings);
    }
    WriteCarProfiles(writes);
    WriteCoefficients(writes);
    WriteButtonBindings(writes);
    return Commit(writes);
}

void ProfileStore::LoadButtonBindings() {
    const IniDocument& ini = File();
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        Bindings[i] = ParseButtonBinding(ini.GetString(kButtonSection, kButtonActionRows[i].key, L"", kBindingBufferChars));
    }
}

// An empty binding is written as an empty value, so the file shows every action that could be bound.
void ProfileStore::WriteButtonBindings(IniDocument& ini) const {
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        ini.SetString(kButtonSection, kButtonActionRows[i].key, ButtonBindingText(Bindings[i]));
    }
}

int32_t ProfileStore::FindProfileByName(std::wstring_view name) const {
    for (size_t i = 0; i < Profiles.size(); ++i) {
        if (EqualsFoldingAscii(Profiles[i].Name, name)) return static_cast<int32_t>(i);
    }
    return -1;
}

int32_t ProfileStore::FindCarProfile(int32_t profileIndex, std::wstring_view carPath) const {
    for (size_t i = 0; i < CarProfiles.size(); ++i) {
        const CarProfile& entry = CarProfiles[i];
        if (entry.ProfileIndex == profileIndex && EqualsFoldingAscii(entry.CarPath, carPath)) {
            return static_cast<int32_t>(i);
        }
    }
    return -1;
}

bool ProfileStore::CarSectionExists(int32_t profileIndex, std::wstring_view carPath) {
    return !File().GetString(CarSectionName(profileIndex, carPath), L"Exists", L"", kExistsBufferChars).empty();
}

EngineSettings ProfileStore::GetCarSettings(int32_t profileIndex, std::wstring_view carPath,
                                            const EngineSettings& fallback) {
    const int32_t found = FindCarProfile(profileIndex, carPath);
    if (found >= 0) return CarProfiles[static_cast<size_t>(found)].Settings;
    if (!CarSectionExists(profileIndex, carPath)) return fallback;
    EngineSettings settings = ReadSettings(File(), CarSectionName(profileIndex, carPath), fallback);
    settings.UseCarSpecificSettings = true;
    CarProfiles.push_back({profileIndex, std::wstring(carPath), settings});
    return settings;
}

void ProfileStore::PutCarSettings(int32_t profileIndex, std::wstring_view carPath, const EngineSettings& settings) {
    std::wstring path = NormalizeCarPath(carPath);
    if (profileIndex < 0 || path.empty()) return;
    EngineSettings stored = settings;
    stored.UseCarSpecificSettings = true;
    const int32_t found = FindCarProfile(profileIndex, path);
    if (found >= 0) {
        CarProfiles[static_cast<size_t>(found)].Settings = stored;
    } else {
        CarProfiles.push_back({profileIndex, std::move(path), stored});
    }
}

void ProfileStore::WriteCarProfiles(IniDocument& ini) const {
    for (const CarProfile& entry : CarProfiles) {
        const std::wstring section = CarSectionName(entry.ProfileIndex, entry.CarPath);
        ini.SetString(section, L"Exists", L"1");
        ini.SetString(section, L"Car", entry.CarPath);
        WriteSettings(ini, section, entry.Settings);
    }
}

std::wstring ProfileStore::LookUpDriverIdentity(int32_t userId) {
    if (userId < 1) return {};
    return TrimText(File().GetString(L"DriverIdentity", DecimalText(userId), L"", kNameBufferChars));
}

bool ProfileStore::WriteDriverIdentity(int32_t userId, std::wstring_view name) {
    IniDocument writes;
    writes.SetString(L"DriverIdentity", DecimalText(userId), name);
    return Commit(writes);
}

bool ProfileStore::CarSettingsActive() const {
    return CurrentSettings.UseCarSpecificSettings && IsIndexInto(SelectedProfile, Profiles.size()) &&
           !NormalizeCarPath(CurrentCarPath).empty();
}

void ProfileStore::SyncCurrentSettings() {
    if (CarSettingsActive()) {
        PutCarSettings(SelectedProfile, CurrentCarPath, CurrentSettings);
    } else if (IsIndexInto(SelectedProfile, Profiles.size())) {
        Profiles[static_cast<size_t>(SelectedProfile)].Settings = CurrentSettings;
    }
}

}  // namespace veltor
