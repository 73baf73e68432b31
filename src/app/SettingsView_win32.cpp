// What the profile store's state looks like on the controls: the view that DriverTracking drives.
#include "app/App.h"
#include "app/ControlCatalogue.h"
#include "app/TorqueField.h"
#include "ui/SliderGeometry.h"

#include <algorithm>

namespace veltor {
namespace {

constexpr int kProfileNameChars = 128;  // 127 and the terminator
constexpr int kTorqueTextChars = 16;

std::wstring TextOf(HWND control, int capacity) {
    std::wstring text(static_cast<size_t>(capacity), L'\0');
    const int length = control != nullptr ? GetWindowTextW(control, text.data(), capacity) : 0;
    text.resize(static_cast<size_t>(std::max(length, 0)));
    return text;
}

}  // namespace

void App::ShowSettings(const EngineSettings& settings) {
    // A mode the list doesn't have (a hand-edited file) shows, and starts, as the first one.
    const bool listed = settings.Mode >= 0 && settings.Mode < static_cast<int32_t>(kOutputModeLines.size());
    SendMessageW(OutputModeCombo, CB_SETCURSEL, listed ? static_cast<WPARAM>(settings.Mode) : 0, 0);
    for (CheckboxRow& row : CheckboxRows) {
        const CatalogueEntry* entry = FindTunableControl(row.Id);
        if (entry == nullptr || entry->CheckField == nullptr) continue;
        row.Checked = settings.*entry->CheckField;
        InvalidateRect(row.Control, nullptr, FALSE);
    }
    for (const CatalogueEntry& entry : ControlCatalogue()) {
        if (entry.SliderField != nullptr) SetSliderValue(entry.Id, settings.*entry.SliderField);
    }
    ShowTorqueField(settings.WheelbaseMaxTorqueTenths);
}

// No SliderValueChanged goes out: the record keeps a value beyond the range until the user moves the slider.
void App::SetSliderValue(int32_t id, int32_t value) {
    SliderRow* row = FindSliderRow(id);
    if (row == nullptr) return;
    row->Value = ClampSliderValue(value, row->Minimum, row->Maximum);
    FormatSliderValue(id, row->Value);
    InvalidateRect(row->Control, nullptr, FALSE);
}

void App::ShowCarPanel(std::wstring_view label, const std::array<int32_t, kCoefficientCount>& sliderValues) {
    if (CarLabel != nullptr) SetWindowTextW(CarLabel, std::wstring(label).c_str());
    for (size_t i = 0; i < kCoefficientCount; ++i) SetSliderValue(kCoefficientRows[i].control, sliderValues[i]);
}

void App::ShowProfileList(const std::vector<DriverProfile>& profiles, int32_t selected) {
    SendMessageW(ProfileCombo, CB_RESETCONTENT, 0, 0);
    for (const DriverProfile& profile : profiles) {
        SendMessageW(ProfileCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(profile.Name.c_str()));
    }
    if (!profiles.empty()) SendMessageW(ProfileCombo, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

void App::ShowCarSpecificCheck(bool checked) {
    if (CarSpecificCheck == nullptr) return;
    CarSpecificCheck->Checked = checked;
    InvalidateRect(CarSpecificCheck->Control, nullptr, FALSE);
}

void App::ShowTorqueField(int32_t tenths) {
    if (TorqueEdit != nullptr) SetWindowTextW(TorqueEdit, TorqueFieldText(tenths).c_str());
}

std::wstring App::ReadProfileNameText() const { return TextOf(ProfileCombo, kProfileNameChars); }

std::wstring App::ReadTorqueText() const { return TextOf(TorqueEdit, kTorqueTextChars); }

}  // namespace veltor
