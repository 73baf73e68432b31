#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "settings/EngineSettings.h"

namespace veltor {

// A game controller's button: the controller's instance GUID and the button's index from 0. No button
// means no binding.
struct ButtonBinding {
    std::array<uint8_t, 16> controller{};  // the GUID's bytes as Windows lays them out in memory
    int32_t button = -1;

    bool IsSet() const { return button >= 0; }
    bool operator==(const ButtonBinding&) const = default;
};

// DirectInput reports 128 buttons a controller at most.
inline constexpr int32_t kBindableButtons = 128;

// The INI file's section of the bindings.
inline constexpr std::wstring_view kButtonSection = L"Buttons";

enum class ButtonCommand : uint8_t {
    StepSetting,      // moves a setting by steps of its slider
    ToggleRecording,  // what Record or Stop rec would do
};

// One thing a wheel button can be bound to, and what the file, the dialog and the session log know of it.
struct ButtonActionRow {
    std::wstring_view key;                       // in the section Buttons
    std::wstring_view label;                     // in the dialog
    ButtonCommand command = ButtonCommand::StepSetting;
    int32_t EngineSettings::*setting = nullptr;  // StepSetting: the setting, and how many slider steps a press
    int32_t steps = 0;
    bool repeats = false;                        // held, the button acts again and again
    int32_t bindingText = 0;                     // the dialog's controls of the row
    int32_t bindButton = 0;
    int32_t clearButton = 0;
};

inline constexpr ButtonActionRow kButtonActionRows[] = {
    {L"StrengthUp", L"Force strength +", ButtonCommand::StepSetting, &EngineSettings::ForceStrength, 1, true, 2001,
     2002, 2003},
    {L"StrengthDown", L"Force strength -", ButtonCommand::StepSetting, &EngineSettings::ForceStrength, -1, true, 2011,
     2012, 2013},
    {L"ToggleRecording", L"Start or stop recording", ButtonCommand::ToggleRecording, nullptr, 0, false, 2021, 2022,
     2023},
};

inline constexpr size_t kButtonActionCount = std::size(kButtonActionRows);

// The binding of each action, in the order of its row.
using ButtonBindings = std::array<ButtonBinding, kButtonActionCount>;

// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx},N" in capitals; empty for no binding.
std::wstring ButtonBindingText(const ButtonBinding& binding);

// The binding a file's value names; no binding for an empty, unknown or malformed value, or a button
// beyond the 128.
ButtonBinding ParseButtonBinding(std::wstring_view text);

// The log's line for a setting stepped from the wheel: "Force strength set to 51% from the wheel."
std::wstring SteppedFromWheelLine(const SettingRow& setting, int32_t value);

}  // namespace veltor
