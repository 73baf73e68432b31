#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "settings/CarCoefficients.h"
#include "settings/EngineSettings.h"
#include "ui/ControlClassNames.h"

namespace veltor {

// The main window. Sizes are pixels; nothing is scaled for the display's DPI.
inline constexpr wchar_t kMainWindowClass[] = L"VeltorCommercialWindow";
inline constexpr uint32_t kMainWindowStyle = 0x02CA0000;  // clip children, caption, system menu, minimize box
inline constexpr int32_t kMainWindowWidth = 1620;         // outer size
inline constexpr int32_t kMainWindowHeight = 875;

// "Gripline v0.1.0.134": the product's name and the four numbers of its version.
std::wstring MainWindowTitle();

enum class ControlKind : uint8_t {
    Label,
    CarLabel,  // the label above the car sliders, which names the car
    ValueText,
    DropDownList,
    EditableCombo,
    PushButton,
    TorqueEdit,
    LogPanel,
    Slider,
    Checkbox,
};

enum class ControlFont : uint8_t { None, Body, Section, Mono };

// What the window does to a control right after creating it.
enum class ControlSetup : uint8_t {
    None,
    Disable,
    FillOutputModes,  // the two lines, index 0 selected
    FillProfiles,     // the profile names, the selected one shown
    ShowCarPanel,     // the car sliders from the car's coefficients (after the last of them)
    FillTorque,       // the six-character limit and the torque text
};

struct ControlRect {
    int32_t X = 0;
    int32_t Y = 0;
    int32_t Width = 0;
    int32_t Height = 0;
};

// One row of the catalogue: a standard control, a checkbox, or a slider block made of a name label, a value
// text and the slider (Rect then holds the block's origin). Rows stand in creation order, which is the
// order of the window's child list. A setting's or a coefficient's label, range and field come from its
// row in the settings tables; the catalogue adds where it stands.
struct CatalogueEntry {
    ControlKind Kind = ControlKind::Label;
    int32_t Id = 0;
    std::wstring_view Text;
    ControlRect Rect;
    ControlFont Font = ControlFont::Body;
    ControlSetup Setup = ControlSetup::None;
    int32_t Minimum = 0;  // sliders
    int32_t Maximum = 0;
    int32_t EngineSettings::*SliderField = nullptr;  // a setting's slider
    const CoefficientRow* Coefficient = nullptr;     // a car slider, which shows a coefficient
    bool EngineSettings::*CheckField = nullptr;      // checkboxes
};

std::span<const CatalogueEntry> ControlCatalogue();

// The catalogue row of a slider or checkbox by control id; null for other ids.
const CatalogueEntry* FindTunableControl(int32_t id);

inline constexpr std::array<std::wstring_view, 2> kOutputModeLines{L"360 Hz telemetry", L"360 Hz interpolated"};

// The three controls of a slider block, from its origin.
ControlRect SliderNameRect(ControlRect origin);
ControlRect SliderValueRect(ControlRect origin);
ControlRect SliderControlRect(ControlRect origin);

// Window class, style and extended style of each kind of control.
std::wstring_view ControlClassName(ControlKind kind);
uint32_t ControlStyle(ControlKind kind);
uint32_t ControlExStyle(ControlKind kind);

}  // namespace veltor
