#include "app/ControlCatalogue.h"

#include <cwchar>

#include "update/ProductVersion.h"

namespace veltor {
namespace {

using K = ControlKind;
using S = EngineSettings;

constexpr CatalogueEntry Label(std::wstring_view text, ControlRect rect, ControlFont font = ControlFont::Body) {
    return {.Kind = K::Label, .Text = text, .Rect = rect, .Font = font};
}

constexpr CatalogueEntry Button(int32_t id, std::wstring_view text, ControlRect rect,
                                ControlSetup setup = ControlSetup::None) {
    return {.Kind = K::PushButton, .Id = id, .Text = text, .Rect = rect, .Setup = setup};
}

constexpr CatalogueEntry Check(int32_t id, std::wstring_view label, int32_t y, bool S::*field) {
    return {.Kind = K::Checkbox, .Id = id, .Text = label, .Rect = {48, y, 250, 24}, .CheckField = field};
}

constexpr CatalogueEntry Slider(int32_t id, std::wstring_view name, int32_t x, int32_t y, int32_t minimum,
                                int32_t maximum, int32_t S::*field) {
    return {.Kind = K::Slider, .Id = id, .Text = name, .Rect = {x, y, 0, 0}, .Font = ControlFont::None,
            .Minimum = minimum, .Maximum = maximum, .SliderField = field};
}

constexpr CatalogueEntry CarSlider(int32_t id, std::wstring_view name, int32_t y, int32_t minimum, int32_t maximum,
                                   int32_t createdWith, ControlSetup setup = ControlSetup::None) {
    return {.Kind = K::Slider, .Id = id, .Text = name, .Rect = {1298, y, 0, 0}, .Font = ControlFont::None,
            .Setup = setup, .Minimum = minimum, .Maximum = maximum, .CreatedWith = createdWith};
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
    Check(1004, L"Use car specific settings", 496, &S::UseCarSpecificSettings),
    Check(1005, L"Reduce force when parked", 522, &S::ReduceForceWhenParked),
    Check(1006, L"Start minimized", 548, &S::StartMinimized),
    Check(1007, L"Run on startup", 574, &S::RunOnStartup),
    Check(1011, L"Simucube mode", 600, &S::SimucubeMode),
    Check(1012, L"Debug logging", 626, &S::DebugLogging),
    // Tuning matrix.
    Label(L"BASE SIGNAL", {374, 188, 220, 20}),
    Slider(1100, L"Min force", 374, 218, 0, 20, &S::MinForce),
    Slider(1101, L"Force strength", 374, 288, 0, 100, &S::ForceStrength),
    Slider(1104, L"Damping", 374, 358, 0, 100, &S::Damping),
    Slider(1102, L"Road texture", 374, 428, 0, 100, &S::Bumps),
    Slider(1103, L"Impact texture", 374, 498, 0, 100, &S::BumpImpacts),
    Slider(1105, L"ABS vibration", 374, 568, 0, 100, &S::AbsVibration),
    Label(L"GRIP MODEL", {674, 188, 220, 20}),
    Slider(1109, L"Understeer resistance", 674, 218, 0, 100, &S::UndersteerResistance),
    Slider(1108, L"Understeer lightening", 674, 288, 0, 100, &S::UndersteerLighten),
    Slider(1106, L"Car force balance", 674, 358, 50, 150, &S::CarForceBalance),
    Slider(1107, L"Suspension detail priority", 674, 428, 0, 100, &S::SuspensionDetailPriority),
    Slider(1110, L"Oversteer correction", 674, 498, 0, 150, &S::OversteerCorrection),
    Slider(1111, L"Oversteer offset", 674, 568, 0, 100, &S::OversteerOffset),
    // Crash protection.
    Slider(1112, L"Longitudinal G-force", 978, 218, 0, 120, &S::CrashLongG),
    Slider(1113, L"Lateral G-force", 978, 288, 0, 120, &S::CrashLatG),
    Slider(1114, L"Duration", 978, 358, 0, 50, &S::CrashDurationTenths),
    Slider(1115, L"Force reduction", 978, 428, 0, 99, &S::CrashReduction),
    // Car-specific feel: the label is the App's CarLabel, the sliders show the car's coefficients.
    CatalogueEntry{.Kind = K::CarLabel, .Text = L"Car: generic", .Rect = {1298, 188, 244, 22}},
    CarSlider(1116, L"Steering build-up", 218, 100, 700, 440),
    CarSlider(1117, L"Extra load in big steering", 288, 0, 450, 0),
    CarSlider(1118, L"Cornering load balance", 358, 50, 130, 110),
    CarSlider(1119, L"Understeer weight", 428, 50, 200, 100),
    CarSlider(1120, L"Understeer trigger point", 498, 0, 200, 100, ControlSetup::ShowCarPanel),
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
