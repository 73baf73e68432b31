#include "app/ControlCatalogue.h"

#include <cwchar>

#include "update/ProductVersion.h"

namespace veltor {
namespace {

using K = ControlKind;

constexpr CatalogueEntry Label(std::wstring_view text, ControlRect rect, ControlFont font = ControlFont::Body) {
    return {.Kind = K::Label, .Text = text, .Rect = rect, .Font = font};
}

constexpr CatalogueEntry Button(int32_t id, std::wstring_view text, ControlRect rect,
                                ControlSetup setup = ControlSetup::None) {
    return {.Kind = K::PushButton, .Id = id, .Text = text, .Rect = rect, .Setup = setup};
}

// A checkbox or a slider of a setting: its label, range and field come from the setting's row.
constexpr CatalogueEntry Check(int32_t id, int32_t y) {
    const SettingRow& row = *FindSettingRow(id);
    return {.Kind = K::Checkbox, .Id = id, .Text = row.label, .Rect = {48, y, 250, 24}, .CheckField = row.flag};
}

constexpr CatalogueEntry Slider(int32_t id, int32_t x, int32_t y) {
    const SettingRow& row = *FindSettingRow(id);
    return {.Kind = K::Slider, .Id = id, .Text = row.label, .Rect = {x, y, 0, 0}, .Font = ControlFont::None,
            .Minimum = row.minimum, .Maximum = row.maximum, .SliderField = row.number};
}

// A car slider: label and range from the coefficient's row.
constexpr CatalogueEntry CarSlider(int32_t id, int32_t y, ControlSetup setup = ControlSetup::None) {
    const CoefficientRow& row = *FindCoefficientRow(id);
    return {.Kind = K::Slider, .Id = id, .Text = row.label, .Rect = {1298, y, 0, 0}, .Font = ControlFont::None,
            .Setup = setup, .Minimum = row.minimum, .Maximum = row.maximum, .Coefficient = &row};
}

constexpr std::array kCatalogue{
    // Control deck.
    Label(L"FORCE FEEDBACK DEVICE", {48, 188, 220, 20}),
    CatalogueEntry{.Kind = K::DropDownList, .Id = 1000, .Text = L"", .Rect = {48, 214, 250, 280}},
    Label(L"OUTPUT MODE", {48, 268, 220, 20}),
    CatalogueEntry{.Kind = K::DropDownList, .Id = 1003, .Text = L"", .Rect = {48, 294, 250, 280},
                   .Setup = ControlSetup::FillOutputModes},
    Label(L"DRIVER PROFILE", {48, 326, 220, 20}),
    CatalogueEntry{.Kind = K::EditableCombo, .Id = 1008, .Text = L"", .Rect = {48, 350, 250, 280},
                   .Setup = ControlSetup::FillProfiles},
    Button(1009, L"New", {48, 390, 118, 34}),
    Button(1010, L"Save", {180, 390, 118, 34}),
    Button(1001, L"Start", {48, 442, 118, 34}),
    Button(1002, L"Stop", {180, 442, 118, 34}, ControlSetup::Disable),
    Check(1004, 496),
    Check(1005, 522),
    Check(1006, 548),
    Check(1007, 574),
    Check(1011, 600),
    Check(1012, 626),
    // Tuning matrix.
    Label(L"BASE SIGNAL", {374, 188, 220, 20}),
    Slider(1100, 374, 218),
    Slider(1101, 374, 288),
    Slider(1104, 374, 358),
    Slider(1102, 374, 428),
    Slider(1103, 374, 498),
    Slider(1105, 374, 568),
    Label(L"GRIP MODEL", {674, 188, 220, 20}),
    Slider(1109, 674, 218),
    Slider(1108, 674, 288),
    Slider(1106, 674, 358),
    Slider(1107, 674, 428),
    Slider(1110, 674, 498),
    Slider(1111, 674, 568),
    // Crash protection.
    Slider(1112, 978, 218),
    Slider(1113, 978, 288),
    Slider(1114, 978, 358),
    Slider(1115, 978, 428),
    // Car-specific feel: the label is the App's CarLabel, the sliders show the car's coefficients.
    CatalogueEntry{.Kind = K::CarLabel, .Text = L"Car: generic", .Rect = {1298, 188, 244, 22}},
    CarSlider(1116, 218),
    CarSlider(1117, 288),
    CarSlider(1118, 358),
    CarSlider(1119, 428),
    CarSlider(1120, 498, ControlSetup::ShowCarPanel),
    // Top band.
    Label(L"WHEELBASE MAX TORQUE", {980, 42, 230, 20}, ControlFont::Section),
    CatalogueEntry{.Kind = K::TorqueEdit, .Id = 1131, .Text = L"", .Rect = {980, 68, 128, 28}, .Setup = ControlSetup::FillTorque},
    Label(L"Nm", {1118, 72, 40, 20}),
    Label(L"UPDATES AND SUPPORT", {1268, 42, 272, 20}, ControlFont::Section),
    Button(1127, L"Update", {1392, 64, 88, 32}),
    Button(1130, L"Donate", {1484, 64, 84, 32}),
    // Recording row and the session log.
    Button(1124, L"Record", {1088, 674, 104, 30}, ControlSetup::Disable),
    Button(1125, L"Stop rec", {1200, 674, 104, 30}, ControlSetup::Disable),
    Button(1126, L"Analyzer", {1312, 674, 104, 30}),
    Button(1123, L"View log", {1424, 674, 124, 30}),
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
