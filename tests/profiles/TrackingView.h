#pragma once
// A view for DriverTracking that keeps what reached the controls, the session log and the engine.
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "profiles/DriverTracking.h"

namespace veltor::test {

struct TrackingView {
    void ShowSettings(const EngineSettings& settings) { shown = settings; }
    void ShowCarPanel(std::wstring_view label, const std::array<int32_t, kCarSliderCount>& values) {
        carLabel = label;
        carSliders = values;
    }
    void ShowProfileList(const std::vector<DriverProfile>& profiles, int32_t selected) {
        profileItems.clear();
        for (const DriverProfile& profile : profiles) profileItems.push_back(profile.Name);
        selectedItem = selected;
    }
    void ShowCarSpecificCheck(bool checked) { carCheck = checked; }
    void ShowTorqueField(int32_t tenths) { torqueText = TorqueFieldText(tenths); }
    std::wstring ReadProfileNameText() const { return nameText; }
    std::wstring ReadTorqueText() const { return torqueText; }
    void AppendLog(const std::wstring& line) { log.push_back(line); }
    void PublishSettings(const EngineSettings& settings) {
        published = settings;
        ++settingsPublications;
    }
    void PublishOverrides(const std::vector<CarCoefficients>& overrides) {
        publishedOverrides = overrides;
        ++overridePublications;
    }

    std::wstring LastLog() const { return log.empty() ? L"" : log.back(); }

    EngineSettings shown;
    std::wstring carLabel;
    std::array<int32_t, kCarSliderCount> carSliders{};
    std::vector<std::wstring> profileItems;
    int32_t selectedItem = -1;
    bool carCheck = false;
    std::wstring torqueText;
    std::wstring nameText;  // what the user typed in the profile box
    std::vector<std::wstring> log;
    EngineSettings published;
    std::vector<CarCoefficients> publishedOverrides;
    int settingsPublications = 0;
    int overridePublications = 0;
};

// A store over its own file, loaded as at start-up, with the view on it.
struct TrackedStore {
    explicit TrackedStore(std::wstring path) : store(std::move(path)) {
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

    ProfileStore store;
    TrackingView view;
    DriverTracking<TrackingView> tracking{store, view};
};

}  // namespace veltor::test
