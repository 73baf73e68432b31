#pragma once
#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/TorqueField.h"
#include "engine/EngineStatus.h"
#include "profiles/AnalyzerAdvice.h"
#include "profiles/IniFile.h"
#include "profiles/ProfileStore.h"
#include "profiles/ProfileText.h"
#include "settings/CarCatalogue.h"
#include "settings/EngineSettings.h"

namespace veltor {

// The car sliders' values for a set of coefficients, in the order of their rows.
std::array<int32_t, kCoefficientCount> CarSliderValues(const CarCoefficients& coefficients);

// "Car: " and the car path, with " (unknown)" for a car that neither the catalogue nor an override knows.
std::wstring CarLabelText(const ProfileStore& store, std::wstring_view normalizedCarPath);

// What shows the tracked state and carries it on: the main window in the product. It holds no state of its
// own here, so a test can record what reached the controls and the engine.
template <class View>
concept TrackingView = requires(View view, const EngineSettings& settings, const std::wstring& text) {
    view.ShowSettings(settings);  // the live record on the controls, no notifications
    view.ShowCarPanel(std::wstring_view{}, std::array<int32_t, kCoefficientCount>{});
    view.ShowProfileList(std::vector<DriverProfile>{}, int32_t{});  // refill, select when not empty
    view.ShowCarSpecificCheck(bool{});                                // no notification
    view.ShowTorqueField(int32_t{});
    { view.ReadProfileNameText() } -> std::same_as<std::wstring>;  // the profile box, 127 characters at most
    { view.ReadTorqueText() } -> std::same_as<std::wstring>;       // the torque box, 15 characters at most
    view.AppendLog(text);
    view.PublishSettings(settings);
    view.PublishOverrides(std::vector<CarCoefficients>{});
};

// Keeps the driver profiles, the car entries, the live record, the controls and the engine's copies in step,
// on the GUI thread. The store holds the state; the view shows it and carries it on.
// The view is checked against TrackingView where the tracking is made, since the main window names its own
// tracking while it is still being declared.
template <class View>
class DriverTracking {
public:
    DriverTracking(ProfileStore& store, View& view)
        requires TrackingView<View>
        : Store(store), Ui(view) {}

    // Takes the car's settings into the live record, if car settings are on and a car has been seen.
    void ReloadCarSettings(bool announce) {
        const std::wstring car = NormalizeCarPath(Store.CurrentCarPath);
        if (!Store.CurrentSettings.UseCarSpecificSettings || car.empty() || !HasSelection()) return;
        EngineSettings fallback = Selected().Settings;
        fallback.UseCarSpecificSettings = true;
        EngineSettings settings = Store.GetCarSettings(Store.SelectedProfile, car, fallback);
        settings.UseCarSpecificSettings = true;
        const bool found = Store.FindCarProfile(Store.SelectedProfile, car) >= 0 ||
                           Store.CarSectionExists(Store.SelectedProfile, car);
        Store.CurrentSettings = settings;
        ShowSettings();
        PublishSettings();
        if (announce) {
            Ui.AppendLog(found ? L"Car specific settings loaded." : L"Using driver profile settings for this car.");
        }
    }

    void ShowSettings() { Ui.ShowSettings(Store.CurrentSettings); }

    void RefreshProfileList() {
        if (!Store.Profiles.empty()) {
            const int32_t last = static_cast<int32_t>(Store.Profiles.size()) - 1;
            Store.SelectedProfile = std::max(std::min(Store.SelectedProfile, last), 0);
        }
        Ui.ShowProfileList(Store.Profiles, Store.SelectedProfile);
    }

    std::wstring ReadProfileNameField() { return TrimText(Ui.ReadProfileNameText()); }

    // The torque box into the live record and into the selected profile, whoever owns the live record: the
    // wheelbase is the driver's, not the car's.
    void ApplyTorqueField() {
        const int32_t tenths = TorqueTenthsFromText(Ui.ReadTorqueText());
        Store.CurrentSettings.WheelbaseMaxTorqueTenths = tenths;
        if (HasSelection()) Selected().Settings.WheelbaseMaxTorqueTenths = tenths;
        Ui.ShowTorqueField(tenths);
        PublishSettings();
    }

    void UpdateCarPanel(std::wstring_view carPath) {
        std::wstring car = NormalizeCarPath(carPath);
        if (car.empty()) car = L"generic";
        Store.ActiveCoefficients = Store.GetCoefficients(car);
        Ui.ShowCarPanel(CarLabelText(Store, car), CarSliderValues(Store.ActiveCoefficients));
    }

    // With no car seen the generic set moves on the sliders but is neither stored nor used by the engine.
    void OnCoefficientSlider(const CoefficientRow& row, int32_t value) {
        std::wstring car = NormalizeCarPath(Store.CurrentCarPath);
        if (car.empty()) car = Store.ActiveCoefficients.CarPath.empty() ? L"generic" : Store.ActiveCoefficients.CarPath;
        Store.ActiveCoefficients.CarPath = car;
        Store.ActiveCoefficients.*row.field = CoefficientFromSlider(row, value);
        if (!EqualsFoldingAscii(car, L"generic")) Store.PutCoefficients(Store.ActiveCoefficients);
        PublishOverrides();
    }

    // The driver as the status strip names him: the name stored for his account, a name the simulator
    // knows, or the account's number.
    std::wstring DriverDisplayName(const EngineStatus& status) {
        std::wstring stored = Store.LookUpDriverIdentity(status.driverUserId);
        if (!stored.empty()) return stored;
        if (!status.driverName.empty() && !EqualsFoldingAscii(status.driverName, L"unknown") && status.driverNameKnown) {
            return status.driverName;
        }
        if (status.driverUserId >= 1) return L"account #" + DecimalText(status.driverUserId);
        return status.driverName;
    }

    // The driver identity and the car of one status snapshot. No car (or the generic one) changes nothing,
    // so leaving the simulator keeps the last car's settings.
    void PollStatus(const EngineStatus& status) {
        StoreDriverIdentity(status);
        const std::wstring car = NormalizeCarPath(status.carPath);
        if (car.empty() || car == Store.CurrentCarPath) return;
        if (Store.CarSettingsActive()) {
            Store.PutCarSettings(Store.SelectedProfile, Store.CurrentCarPath, Store.CurrentSettings);
        }
        Store.CurrentCarPath = car;
        ReloadCarSettings(true);
        UpdateCarPanel(car);
    }

    // A profile chosen in the profile list.
    void SelectProfile(int32_t index) {
        if (index < 0 || index >= static_cast<int32_t>(Store.Profiles.size())) return;
        Store.SyncCurrentSettings();
        Store.SelectedProfile = index;
        Store.CurrentSettings = Selected().Settings;
        ShowSettings();
        ReloadCarSettings(false);
        PublishSettings();
        Ui.AppendLog(L"Driver profile loaded.");
    }

    // A setting changed by its control: into the live record, to its owner and to the engine.
    template <class Field, class Value>
    void ChangeSetting(Field EngineSettings::*field, Value value) {
        Store.CurrentSettings.*field = static_cast<Field>(value);
        Store.SyncCurrentSettings();
        PublishSettings();
    }

    // The car-settings switch: on takes the car's entry; off keeps the car's values in its entry and goes
    // back to the profile's.
    void ToggleCarSpecific(bool checked) {
        const bool carOwnedTheRecord = Store.CarSettingsActive();
        if (checked) {
            Store.CurrentSettings.UseCarSpecificSettings = true;
            if (HasSelection()) Selected().Settings.UseCarSpecificSettings = true;
            ReloadCarSettings(false);
        } else {
            Store.CurrentSettings.UseCarSpecificSettings = false;
            if (carOwnedTheRecord) {
                Store.PutCarSettings(Store.SelectedProfile, Store.CurrentCarPath, Store.CurrentSettings);
            }
            if (HasSelection()) {
                EngineSettings profile = Selected().Settings;
                profile.UseCarSpecificSettings = false;
                Store.CurrentSettings = profile;
                Selected().Settings = profile;
                ShowSettings();
            }
        }
        PublishSettings();
        constexpr const SettingRow& row = SettingRowOf(&EngineSettings::UseCarSpecificSettings);
        Ui.AppendLog(std::wstring(Store.CurrentSettings.UseCarSpecificSettings ? row.onLog : row.offLog));
    }

    void NewProfile() {
        Store.SyncCurrentSettings();
        int32_t n = static_cast<int32_t>(Store.Profiles.size()) + 1;
        std::wstring name = L"Driver " + DecimalText(n);
        while (Store.FindProfileByName(name) >= 0) name = L"Driver " + DecimalText(++n);
        Store.Profiles.push_back({std::move(name), Store.CurrentSettings});
        Store.SelectedProfile = static_cast<int32_t>(Store.Profiles.size()) - 1;
        RefreshProfileList();
        ReloadCarSettings(false);
        SaveAll();
        Ui.AppendLog(L"New driver profile created.");
    }

    // Saves under the typed name: another profile's name overwrites that profile, a new name renames the
    // selected one. With a car seen, the live record and the car panel become the car's.
    void SaveProfile() {
        if (!HasSelection()) return;
        std::wstring name = ReadProfileNameField();
        if (name.empty()) name = Selected().Name;
        const int32_t other = Store.FindProfileByName(name);
        if (other >= 0) Store.SelectedProfile = other;
        Selected().Name = name;
        const std::wstring car = NormalizeCarPath(Store.CurrentCarPath);
        if (!car.empty()) {
            Store.CurrentSettings.UseCarSpecificSettings = true;
            Selected().Settings.UseCarSpecificSettings = true;
            Ui.ShowCarSpecificCheck(true);
            Store.PutCarSettings(Store.SelectedProfile, car, Store.CurrentSettings);
            Store.ActiveCoefficients.CarPath = car;
            Store.PutCoefficients(Store.ActiveCoefficients);
            UpdateCarPanel(car);
            PublishOverrides();
            PublishSettings();
        } else {
            Selected().Settings = Store.CurrentSettings;
        }
        RefreshProfileList();
        SaveAll();
        Ui.AppendLog(car.empty() ? L"Driver profile saved." : L"Car settings and coefficients saved.");
    }

    // The whole store into its file; a file that could not be written is said once per attempt, and the
    // session goes on from memory.
    bool SaveAll() {
        if (Store.SaveAll()) return true;
        ReportSaveFailure();
        return false;
    }

    // Profile advice with a car goes to the car's entry, without one to the driver profile; coefficient
    // advice needs a car and becomes that car's override.
    void ApplyAdvice(const AnalyzerAdvice& advice) {
        std::wstring name = TrimText(advice.Profile);
        if (name.empty() && HasSelection()) name = Selected().Name;
        int32_t index = Store.FindProfileByName(name);
        if (index < 0) {
            const EngineSettings base = HasSelection() ? Selected().Settings : Store.CurrentSettings;
            Store.Profiles.push_back({name, base});
            index = static_cast<int32_t>(Store.Profiles.size()) - 1;
        }
        Store.SelectedProfile = index;
        Selected().Name = name;

        const std::wstring car = NormalizeCarPath(advice.Car);
        const bool profileAdvice = advice.HasProfileSettings && AppliesAnySetting(advice);
        const bool coefficientAdvice = advice.HasCoefficientAdvice && !car.empty() && AppliesAnyCoefficient(advice);
        if (profileAdvice) MergeSettingsAdvice(advice, car);
        if (coefficientAdvice) MergeCoefficientAdvice(advice, car);

        RefreshProfileList();
        Store.CurrentSettings = Selected().Settings;
        if (!car.empty()) {
            Store.CurrentCarPath = car;
            if (profileAdvice || Store.CurrentSettings.UseCarSpecificSettings) {
                Store.CurrentSettings = Store.GetCarSettings(Store.SelectedProfile, car, Selected().Settings);
                if (profileAdvice) Store.CurrentSettings.UseCarSpecificSettings = true;
            }
        }
        UpdateCarPanel(car.empty() ? Store.CurrentCarPath : car);
        ShowSettings();
        PublishOverrides();
        PublishSettings();
        SaveAll();
        Ui.AppendLog(L"Analyzer advice applied to profile " + name + (car.empty() ? L"" : L" for car " + car) + L".");
    }

    // An advice file from the command line or a second instance: applied or refused, then deleted either way
    // (never the store's own file, whatever the path says).
    void ApplyAdviceFile(const std::wstring& path) {
        AnalyzerAdvice advice;
        if (LoadAdviceFile(path, advice)) {
            ApplyAdvice(advice);
        } else {
            Ui.AppendLog(L"Could not load analyzer advice file.");
        }
        if (!path.empty()) DeleteFileUnless(path, Store.IniPath());
    }

private:
    bool HasSelection() const {
        return Store.SelectedProfile >= 0 && Store.SelectedProfile < static_cast<int32_t>(Store.Profiles.size());
    }
    DriverProfile& Selected() { return Store.Profiles[static_cast<size_t>(Store.SelectedProfile)]; }

    void PublishSettings() { Ui.PublishSettings(Store.CurrentSettings); }
    void PublishOverrides() { Ui.PublishOverrides(Store.CoefficientOverrides); }
    void ReportSaveFailure() { Ui.AppendLog(L"Could not save profiles to " + Store.IniPath() + L"."); }

    // The stored name is compared trimmed and with A to Z folded, so neither blanks nor a change of case
    // alone rewrite the file on every poll.
    void StoreDriverIdentity(const EngineStatus& status) {
        const std::wstring& name = status.driverName;
        if (status.driverUserId < 1 || !status.driverNameKnown || name.empty() || EqualsFoldingAscii(name, L"unknown")) {
            return;
        }
        if (EqualsFoldingAscii(Store.LookUpDriverIdentity(status.driverUserId), TrimText(name))) return;
        if (!Store.WriteDriverIdentity(status.driverUserId, name)) ReportSaveFailure();
    }

    static bool AppliesAnySetting(const AnalyzerAdvice& a) {
        for (size_t i = 0; i < kSettingCount; ++i) {
            if (a.ApplySetting[i] && !kSettingRows[i].adviceKey.empty()) return true;
        }
        return false;
    }
    static bool AppliesAnyCoefficient(const AnalyzerAdvice& a) {
        for (bool apply : a.ApplyCoefficient) {
            if (apply) return true;
        }
        return false;
    }

    void MergeSettingsAdvice(const AnalyzerAdvice& a, const std::wstring& car) {
        EngineSettings merged = Selected().Settings;
        if (!car.empty()) {
            merged = Store.GetCarSettings(Store.SelectedProfile, car, Selected().Settings);
            merged.UseCarSpecificSettings = true;
            Selected().Settings.UseCarSpecificSettings = true;
        }
        for (size_t i = 0; i < kSettingCount; ++i) {
            const SettingRow& row = kSettingRows[i];
            if (a.ApplySetting[i] && !row.adviceKey.empty()) SetSettingValue(row, merged, SettingValue(row, a.Settings));
        }
        if (car.empty()) {
            Selected().Settings = merged;
        } else {
            Store.PutCarSettings(Store.SelectedProfile, car, merged);
        }
    }

    // The numbers not applied stay what the car had.
    void MergeCoefficientAdvice(const AnalyzerAdvice& a, const std::wstring& car) {
        CarCoefficients merged = Store.GetCoefficients(car);
        merged.CarPath = car;
        for (size_t i = 0; i < kCoefficientCount; ++i) {
            const CoefficientRow& row = kCoefficientRows[i];
            if (a.ApplyCoefficient[i]) merged.*row.field = a.Coefficients.*row.field;
        }
        Store.ActiveCoefficients = merged;
        Store.PutCoefficients(merged);
    }

    ProfileStore& Store;
    View& Ui;
};

}  // namespace veltor
