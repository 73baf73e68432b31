#pragma once
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "settings/ValueText.h"

namespace veltor {

// The flat record of tuning that a profile, a car entry, the live record and the engine each hold by value.
// Field names are the INI keys; the initializers are the defaults. Numbers are signed 32-bit, switches one
// byte. Every other fact about a field stands in its row of kSettingRows below.
struct EngineSettings {
    int32_t Mode = 0;  // 0: 360 Hz telemetry, 1: 360 Hz interpolated
    bool UseCarSpecificSettings = true;
    bool ReduceForceWhenParked = true;
    bool StartMinimized = false;
    bool RunOnStartup = false;
    bool SimucubeMode = false;
    bool DebugLogging = false;
    int32_t MinForce = 0;
    int32_t ForceStrength = 50;
    int32_t Bumps = 20;
    int32_t BumpImpacts = 20;
    int32_t Damping = 0;
    int32_t AbsVibration = 15;
    int32_t Understeer = 0;
    int32_t SuspensionDetailPriority = 50;
    int32_t CarForceBalance = 100;
    int32_t UndersteerLighten = 0;
    int32_t UndersteerResistance = 75;
    int32_t OversteerCorrection = 50;
    int32_t OversteerOffset = 0;        // tenths of a degree
    int32_t CrashLongG = 60;            // tenths of a g
    int32_t CrashLatG = 60;             // tenths of a g
    int32_t CrashDurationTenths = 15;   // tenths of a second
    int32_t CrashReduction = 95;        // percent
    int32_t WheelbaseMaxTorqueTenths = 0;  // tenths of a newton metre; never enters the force
};

// One field of EngineSettings and what the file, the advice, the controls and the log know of it.
struct SettingRow {
    std::wstring_view key{};                     // INI key, and the name tools set the field by
    int32_t EngineSettings::*number = nullptr;   // a number, or
    bool EngineSettings::*flag = nullptr;        // a switch (stored as 1 or 0); the other member is null
    int32_t minimum = 0;                         // the control's range; a stored value may lie beyond it
    int32_t maximum = 0;
    int32_t control = 0;                         // the control's id; 0 for none
    std::wstring_view label{};                   // the control's label
    ValueText text = ValueText::Whole;           // the slider's value text
    std::wstring_view adviceKey{};               // its value in an advice file; empty when no advice names it
    std::wstring_view applyKey{};                // the advice file's switch for that value
    int32_t adviceOrder = 0;                     // its place in the advice file's group, from 1
    std::wstring_view onLog{};                   // switches: the session log's line when turned on
    std::wstring_view offLog{};                  // ... and off
    std::wstring_view legacyKey{};               // read when the key itself is absent
    int32_t EngineSettings::*follows = nullptr;  // takes this field's value when absent from a file
    bool clampedOnRead = false;                  // a file's value is held to the range
};

namespace setting_rows {

constexpr SettingRow Number(std::wstring_view key, int32_t EngineSettings::*field) {
    return {.key = key, .number = field};
}

constexpr SettingRow Slider(std::wstring_view key, int32_t EngineSettings::*field, int32_t control,
                            std::wstring_view label, int32_t minimum, int32_t maximum,
                            ValueText text = ValueText::Whole) {
    return {.key = key, .number = field, .flag = nullptr, .minimum = minimum, .maximum = maximum,
            .control = control, .label = label, .text = text};
}

constexpr SettingRow Advised(SettingRow row, std::wstring_view adviceKey, std::wstring_view applyKey, int32_t order) {
    row.adviceKey = adviceKey;
    row.applyKey = applyKey;
    row.adviceOrder = order;
    return row;
}

constexpr SettingRow Switch(std::wstring_view key, bool EngineSettings::*field, int32_t control,
                            std::wstring_view label, std::wstring_view onLog, std::wstring_view offLog) {
    return {.key = key, .number = nullptr, .flag = field, .minimum = 0, .maximum = 1, .control = control,
            .label = label, .onLog = onLog, .offLog = offLog};
}

using S = EngineSettings;
using T = ValueText;

// In the order the profile file reads and writes them.
inline constexpr SettingRow kRows[] = {
    {.key = L"Mode", .number = &S::Mode, .flag = nullptr, .minimum = 0, .maximum = 1, .control = 1003},
    Switch(L"UseCarSpecificSettings", &S::UseCarSpecificSettings, 1004, L"Use car specific settings",
           L"Car specific settings enabled.", L"Car specific settings disabled."),
    Switch(L"ReduceForceWhenParked", &S::ReduceForceWhenParked, 1005, L"Reduce force when parked",
           L"Parked force reduction enabled.", L"Parked force reduction disabled."),
    Switch(L"StartMinimized", &S::StartMinimized, 1006, L"Start minimized", L"Start minimized enabled.",
           L"Start minimized disabled."),
    Switch(L"RunOnStartup", &S::RunOnStartup, 1007, L"Run on startup", L"Run on startup enabled.",
           L"Run on startup disabled."),
    [] {
        SettingRow row = Switch(L"SimucubeMode", &S::SimucubeMode, 1011, L"Simucube mode",
                                L"Simucube mode enabled. Stop and Start FFB to apply.",
                                L"Simucube mode disabled. Stop and Start FFB to apply.");
        row.legacyKey = L"LegacyIracingFfbHandoff";  // what older files call it
        return row;
    }(),
    Switch(L"DebugLogging", &S::DebugLogging, 1012, L"Debug logging", L"Debug logging enabled.",
           L"Debug logging disabled."),
    Slider(L"MinForce", &S::MinForce, 1100, L"Min force", 0, 20),
    Advised(Slider(L"ForceStrength", &S::ForceStrength, 1101, L"Force strength", 0, 100, T::Percent),
            L"ForceStrength", L"ApplyForceStrength", 1),
    Advised(Slider(L"Bumps", &S::Bumps, 1102, L"Road texture", 0, 100), L"SuspensionTexture",
            L"ApplySuspensionTexture", 3),
    [] {
        SettingRow row = Advised(Slider(L"BumpImpacts", &S::BumpImpacts, 1103, L"Impact texture", 0, 100),
                                 L"SuspensionImpactTexture", L"ApplySuspensionImpactTexture", 4);
        row.follows = &S::Bumps;  // files from before impacts had a key of their own
        return row;
    }(),
    Slider(L"Damping", &S::Damping, 1104, L"Damping", 0, 100),
    Advised(Slider(L"AbsVibration", &S::AbsVibration, 1105, L"ABS vibration", 0, 100, T::Percent), L"AbsVibration",
            L"ApplyAbsVibration", 6),
    Number(L"Understeer", &S::Understeer),
    Advised(Slider(L"SuspensionDetailPriority", &S::SuspensionDetailPriority, 1107, L"Suspension detail priority", 0,
                   100, T::Percent),
            L"SuspensionDetailPriority", L"ApplySuspensionDetailPriority", 5),
    Advised(Slider(L"CarForceBalance", &S::CarForceBalance, 1106, L"Car force balance", 50, 150, T::Percent),
            L"CarForceBalance", L"ApplyCarForceBalance", 2),
    Slider(L"UndersteerLighten", &S::UndersteerLighten, 1108, L"Understeer lightening", 0, 100),
    Slider(L"UndersteerResistance", &S::UndersteerResistance, 1109, L"Understeer resistance", 0, 100),
    [] {
        SettingRow row = Slider(L"OversteerCorrection", &S::OversteerCorrection, 1110, L"Oversteer correction", 0, 150);
        row.clampedOnRead = true;
        return row;
    }(),
    Slider(L"OversteerOffset", &S::OversteerOffset, 1111, L"Oversteer offset", 0, 100),
    Slider(L"CrashLongG", &S::CrashLongG, 1112, L"Longitudinal G-force", 0, 120, T::TenthsOfG),
    Slider(L"CrashLatG", &S::CrashLatG, 1113, L"Lateral G-force", 0, 120, T::TenthsOfG),
    Slider(L"CrashDurationTenths", &S::CrashDurationTenths, 1114, L"Duration", 0, 50, T::TenthsOfSecond),
    Slider(L"CrashReduction", &S::CrashReduction, 1115, L"Force reduction", 0, 99, T::Percent),
    {.key = L"WheelbaseMaxTorqueTenths", .number = &S::WheelbaseMaxTorqueTenths, .flag = nullptr, .control = 1131},
};

}  // namespace setting_rows

inline constexpr std::span<const SettingRow> kSettingRows = setting_rows::kRows;
inline constexpr size_t kSettingCount = std::size(setting_rows::kRows);

// The row of a control id; null for an id that no setting has.
constexpr const SettingRow* FindSettingRow(int32_t control) {
    for (const SettingRow& row : kSettingRows) {
        if (row.control == control && control != 0) return &row;
    }
    return nullptr;
}

[[noreturn]] void NoSettingRow();

// The row of a field. Every field has one: a field without one fails the build where this is
// constant-evaluated, and stops the program elsewhere.
constexpr const SettingRow& SettingRowOf(int32_t EngineSettings::*field) {
    for (const SettingRow& row : kSettingRows) {
        if (row.number == field) return row;
    }
    NoSettingRow();
}
constexpr const SettingRow& SettingRowOf(bool EngineSettings::*field) {
    for (const SettingRow& row : kSettingRows) {
        if (row.flag == field) return row;
    }
    NoSettingRow();
}

// A row's value in a record, switches as 1 or 0; and the same value set.
inline int32_t SettingValue(const SettingRow& row, const EngineSettings& settings) {
    return row.flag != nullptr ? (settings.*row.flag ? 1 : 0) : settings.*row.number;
}
inline void SetSettingValue(const SettingRow& row, EngineSettings& settings, int32_t value) {
    if (row.flag != nullptr) {
        settings.*row.flag = value != 0;
    } else {
        settings.*row.number = value;
    }
}

// Sets the field whose INI key is `key` (ASCII, case-sensitive). A switch takes any non-zero value as 1.
// False, with the record untouched, for a key that names no field.
bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value);

// Decimal text with an optional sign and nothing else, within the i32 range.
bool ParseSettingInteger(std::string_view text, int32_t& value);

}  // namespace veltor
