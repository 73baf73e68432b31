// The store's start-up load over an arbitrary file, then a save: the load ends in at least one profile and
// a valid selection, the save succeeds, and loading what it wrote gives the same profiles and overrides.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "profiles/ProfileStore.h"
#include "profiles/SettingsSection.h"
#include "settings/CarCatalogue.h"

namespace {

// scripts/fuzz points TMPDIR at a scratch folder in memory, where the save's flushes cost nothing.
std::wstring FuzzIniPath() {
    const char* folder = std::getenv("TMPDIR");
    const std::string path = std::string(folder != nullptr ? folder : "/tmp") + "/veltor-fuzz-" +
                             std::to_string(getpid()) + ".ini";
    return std::wstring(path.begin(), path.end());
}

std::wstring Text(const veltor::EngineSettings& settings) {
    veltor::IniDocument ini;
    veltor::WriteSettings(ini, L"S", settings);
    return ini.Serialize();
}

veltor::ProfileStore Loaded(const std::wstring& path) {
    veltor::ProfileStore store(path);
    store.LoadCoefficients();
    store.LoadProfiles();
    store.LoadButtonBindings();
    return store;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace veltor;
    static const std::wstring path = FuzzIniPath();
    const std::string narrow(path.begin(), path.end());
    if (std::FILE* file = std::fopen(narrow.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    ProfileStore store = Loaded(path);
    if (store.Profiles.empty() || store.SelectedProfile < 0 ||
        static_cast<size_t>(store.SelectedProfile) >= store.Profiles.size()) {
        __builtin_trap();
    }
    for (int32_t profile = 0; profile < 2; ++profile) {
        store.GetCarSettings(profile, CarCatalogue()[30].CarPath, store.CurrentSettings);
        store.IsKnownCar(store.GetCoefficients(L"mx5 mx52016").CarPath);
    }
    store.LookUpDriverIdentity(1);
    if (!store.SaveAll()) __builtin_trap();

    const ProfileStore reread = Loaded(path);
    if (reread.Profiles.size() != store.Profiles.size() || reread.SelectedProfile != store.SelectedProfile ||
        reread.CoefficientOverrides.size() != store.CoefficientOverrides.size() || reread.Bindings != store.Bindings) {
        __builtin_trap();
    }
    for (size_t i = 0; i < store.Profiles.size(); ++i) {
        if (reread.Profiles[i].Name != store.Profiles[i].Name) __builtin_trap();
        if (Text(reread.Profiles[i].Settings) != Text(store.Profiles[i].Settings)) __builtin_trap();
    }
    for (size_t i = 0; i < store.CoefficientOverrides.size(); ++i) {
        if (reread.CoefficientOverrides[i].CarPath != store.CoefficientOverrides[i].CarPath) __builtin_trap();
    }
    return 0;
}
