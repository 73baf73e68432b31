#include "analyzer/StoredSettings.h"

#include "profiles/ProfileStore.h"
#include "profiles/ProfileText.h"

namespace veltor::analyzer {

OfflineSettings StoredSettingsForCar(const std::wstring& iniPath, std::wstring_view carPath) {
    ProfileStore store(iniPath);
    store.LoadProfiles();
    store.LoadCoefficients();
    const DriverProfile& profile = store.Profiles[static_cast<size_t>(store.SelectedProfile)];
    OfflineSettings chosen;
    chosen.profileName = profile.Name;
    chosen.settings = profile.Settings;
    const std::wstring car = NormalizeCarPath(carPath);
    if (profile.Settings.UseCarSpecificSettings && !car.empty()) {
        chosen.settings = store.GetCarSettings(store.SelectedProfile, car, profile.Settings);
    }
    chosen.overrides = store.CoefficientOverrides;
    return chosen;
}

}  // namespace veltor::analyzer
