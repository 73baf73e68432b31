#pragma once
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "app/DriverTracking.h"

namespace veltor::test {

// A view for DriverTracking that keeps what reached the controls, the session log and the engine.
struct TrackingView {
    void ShowSettings(const EngineSettings& settings) { shown = settings; }
    void ShowCarPanel(std::wstring_view label, const std::array<int32_t, kCoefficientCount>& values) {
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
    std::array<int32_t, kCoefficientCount> carSliders{};
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

}  // namespace veltor::test
