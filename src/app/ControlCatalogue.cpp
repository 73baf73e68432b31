#include "app/ControlCatalogue.h"

#include <cwchar>

#include "app/ControlIds.h"
#include "update/ProductVersion.h"

namespace veltor {
namespace {

using K = ControlKind;
using S = EngineSettings;
using C = CarCoefficients;

constexpr CatalogueEntry Label(std::wstring_view text, ControlRect rect, ControlFont font = ControlFont::Body) {
    return {.Kind = K::Label, .Text = text, .Rect = rect, .Font = font};
}

constexpr CatalogueEntry Button(int32_t id, std::wstring_view text, ControlRect rect,
                                ControlSetup setup = ControlSetup::None) {
    return {.Kind = K::PushButton, .Id = id, .Text = text, .Rect = rect, .Setup = setup};
}

// A checkbox or a slider of a setting: its label, range and field come from the setting's row.
constexpr CatalogueEntry Check(bool S::*field, int32_t y) {
    const SettingRow& row = SettingRowOf(field);
    return {.Kind = K::Checkbox, .Id = row.control, .Text = row.label, .Rect = {48, y, 250, 24}, .CheckField = field};
}

constexpr CatalogueEntry Slider(int32_t S::*field, int32_t x, int32_t y) {
    const SettingRow& row = SettingRowOf(field);
    return {.Kind = K::Slider, .Id = row.control, .Text = row.label, .Rect = {x, y, 0, 0}, .Font = ControlFont::None,
            .Minimum = row.minimum, .Maximum = row.maximum, .SliderField = field};
}

// A car slider: id, label and range from the coefficient's row.
constexpr CatalogueEntry CarSlider(float C::*field, int32_t y, ControlSetup setup = ControlSetup::None) {
    const CoefficientRow& row = CoefficientRowOf(field);
    return {.Kind = K::Slider, .Id = row.control, .Text = row.label, .Rect = {1298, y, 0, 0},
            .Font = ControlFont::None, .Setup = setup, .Minimum = row.minimum, .Maximum = row.maximum,
            .Coefficient = &row};
}

constexpr std::array kCatalogue{
    // Control deck.
    Label(L"FORCE FEEDBACK DEVICE", {48, 188, 220, 20}),
    CatalogueEntry{.Kind = K::DropDownList, .Id = kDeviceCombo, .Text = L"", .Rect = {48, 214, 250, 280}},
    Label(L"OUTPUT MODE", {48, 268, 220, 20}),
    CatalogueEntry{.Kind = K::DropDownList, .Id = kOutputModeCombo, .Text = L"", .Rect = {48, 294, 250, 280},
                   .Setup = ControlSetup::FillOutputModes},
    Label(L"DRIVER PROFILE", {48, 326, 220, 20}),
    CatalogueEntry{.Kind = K::EditableCombo, .Id = kProfileCombo, .Text = L"", .Rect = {48, 350, 250, 280},
                   .Setup = ControlSetup::FillProfiles},
    Button(kNewButton, L"New", {48, 390, 118, 34}),
    Button(kSaveButton, L"Save", {180, 390, 118, 34}),
    Button(kStartButton, L"Start", {48, 442, 118, 34}),
    Button(kStopButton, L"Stop", {180, 442, 118, 34}, ControlSetup::Disable),
    Check(&S::UseCarSpecificSettings, 496),
    Check(&S::ReduceForceWhenParked, 522),
    Check(&S::StartMinimized, 548),
    Check(&S::RunOnStartup, 574),
    Check(&S::SimucubeMode, 600),
    Check(&S::DebugLogging, 626),
    // Tuning matrix.
    Label(L"BASE SIGNAL", {374, 188, 220, 20}),
    Slider(&S::MinForce, 374, 218),
    Slider(&S::ForceStrength, 374, 288),
    Slider(&S::Damping, 374, 358),
    Slider(&S::Bumps, 374, 428),
    Slider(&S::BumpImpacts, 374, 498),
    Slider(&S::AbsVibration, 374, 568),
    Label(L"GRIP MODEL", {674, 188, 220, 20}),
    Slider(&S::UndersteerResistance, 674, 218),
    Slider(&S::UndersteerLighten, 674, 288),
    Slider(&S::CarForceBalance, 674, 358),
    Slider(&S::SuspensionDetailPriority, 674, 428),
    Slider(&S::OversteerCorrection, 674, 498),
    Slider(&S::OversteerOffset, 674, 568),
    // Crash protection.
    Slider(&S::CrashLongG, 978, 218),
    Slider(&S::CrashLatG, 978, 288),
    Slider(&S::CrashDurationTenths, 978, 358),
    Slider(&S::CrashReduction, 978, 428),
    // Car-specific feel: the label is the App's CarLabel, the sliders show the car's coefficients.
    CatalogueEntry{.Kind = K::CarLabel, .Text = L"Car: generic", .Rect = {1298, 188, 244, 22}},
    CarSlider(&C::YawRateMultiplier, 218),
    CarSlider(&C::YawSteerGain, 288),
    CarSlider(&C::LateralAccelDivisor, 358),
    CarSlider(&C::ResistanceGain, 428),
    CarSlider(&C::SteerMarginBias, 498, ControlSetup::ShowCarPanel),
    // Top band.
    Label(L"WHEELBASE MAX TORQUE", {980, 42, 230, 20}, ControlFont::Section),
    CatalogueEntry{.Kind = K::TorqueEdit, .Id = kTorqueEdit, .Text = L"", .Rect = {980, 68, 128, 28}, .Setup = ControlSetup::FillTorque},
    Label(L"Nm", {1118, 72, 40, 20}),
    Label(L"UPDATES AND SUPPORT", {1268, 42, 272, 20}, ControlFont::Section),
    Button(kUpdateButton, L"Update", {1392, 64, 88, 32}),
    Button(kDonateButton, L"Donate", {1484, 64, 84, 32}),
    // Recording row and the session log.
    Button(kRecordButton, L"Record", {1088, 674, 104, 30}, ControlSetup::Disable),
    Button(kStopRecButton, L"Stop rec", {1200, 674, 104, 30}, ControlSetup::Disable),
    Button(kAnalyzerButton, L"Analyzer", {1312, 674, 104, 30}),
    Button(kViewLogButton, L"View log", {1424, 674, 124, 30}),
    CatalogueEntry{.Kind = K::LogPanel, .Text = L"", .Rect = {48, 718, 1500, 56}, .Font = ControlFont::Mono},
};

}  // namespace

std::wstring MainWindowTitle() {
    wchar_t title[64];
    std::swprintf(title, 64, L"%ls v%d.%d.%d.%d", L"Gripline", ProductVersion[0], ProductVersion[1],
                  ProductVersion[2], ProductVersion[3]);
    return title;
}

std::span<const CatalogueEntry> ControlCatalogue() { return kCatalogue; }

const CatalogueEntry* FindTunableControl(int32_t id) {
    for (const CatalogueEntry& entry : kCatalogue) {
        if (entry.Id == id && (entry.Kind == K::Slider || entry.Kind == K::Checkbox)) return &entry;
    }
    return nullptr;
}

ControlRect SliderNameRect(ControlRect origin) { return {origin.X, origin.Y, 174, 22}; }
ControlRect SliderValueRect(ControlRect origin) { return {origin.X + 180, origin.Y, 64, 22}; }
ControlRect SliderControlRect(ControlRect origin) { return {origin.X, origin.Y + 26, 244, 30}; }

std::wstring_view ControlClassName(ControlKind kind) {
    switch (kind) {
        case K::Label:
        case K::CarLabel:
        case K::ValueText: return L"Static";
        case K::DropDownList:
        case K::EditableCombo: return L"ComboBox";
        case K::PushButton: return L"Button";
        case K::TorqueEdit:
        case K::LogPanel: return L"Edit";
        case K::Slider: return kSliderClass;
        case K::Checkbox: return kCheckboxClass;
    }
    return L"Static";
}

uint32_t ControlStyle(ControlKind kind) {
    switch (kind) {
        case K::Label:
        case K::CarLabel: return 0x50000080;       // SS_NOPREFIX
        case K::ValueText: return 0x50000002;      // SS_RIGHT
        case K::DropDownList: return 0x50010003;   // tab stop, CBS_DROPDOWNLIST
        case K::EditableCombo: return 0x50210002;  // vertical scroll, tab stop, CBS_DROPDOWN
        case K::PushButton: return 0x50010000;
        case K::TorqueEdit: return 0x50010082;     // tab stop, ES_AUTOHSCROLL, ES_RIGHT
        case K::LogPanel: return 0x50200844;       // vertical scroll, multi-line, auto-scroll, read-only
        case K::Slider:
        case K::Checkbox: return 0x50010000;
    }
    return 0x50000000;
}

uint32_t ControlExStyle(ControlKind kind) {
    return kind == K::TorqueEdit || kind == K::LogPanel ? 0x200u : 0u;  // WS_EX_CLIENTEDGE
}

}  // namespace veltor
