#include "profiles/SettingsSection.h"

#include <algorithm>
#include <string>

#include "profiles/ProfileText.h"

namespace veltor {
namespace {

// The platform reads an integer key into 64 characters.
constexpr size_t kIntegerBufferChars = 64;
constexpr int32_t kOversteerCorrectionMax = 150;

struct SettingsKey {
    std::wstring_view name;
    int32_t EngineSettings::*number;
    bool EngineSettings::*flag;
};

// The record's order is the order of reading and writing.
constexpr SettingsKey kSettingsKeys[] = {
    {L"Mode", &EngineSettings::Mode, nullptr},
    {L"UseCarSpecificSettings", nullptr, &EngineSettings::UseCarSpecificSettings},
    {L"ReduceForceWhenParked", nullptr, &EngineSettings::ReduceForceWhenParked},
    {L"StartMinimized", nullptr, &EngineSettings::StartMinimized},
    {L"RunOnStartup", nullptr, &EngineSettings::RunOnStartup},
    {L"SimucubeMode", nullptr, &EngineSettings::SimucubeMode},
    {L"DebugLogging", nullptr, &EngineSettings::DebugLogging},
    {L"MinForce", &EngineSettings::MinForce, nullptr},
    {L"ForceStrength", &EngineSettings::ForceStrength, nullptr},
    {L"Bumps", &EngineSettings::Bumps, nullptr},
    {L"BumpImpacts", &EngineSettings::BumpImpacts, nullptr},
    {L"Damping", &EngineSettings::Damping, nullptr},
    {L"AbsVibration", &EngineSettings::AbsVibration, nullptr},
    {L"Understeer", &EngineSettings::Understeer, nullptr},
    {L"SuspensionDetailPriority", &EngineSettings::SuspensionDetailPriority, nullptr},
    {L"CarForceBalance", &EngineSettings::CarForceBalance, nullptr},
    {L"UndersteerLighten", &EngineSettings::UndersteerLighten, nullptr},
    {L"UndersteerResistance", &EngineSettings::UndersteerResistance, nullptr},
    {L"OversteerCorrection", &EngineSettings::OversteerCorrection, nullptr},
    {L"OversteerOffset", &EngineSettings::OversteerOffset, nullptr},
    {L"CrashLongG", &EngineSettings::CrashLongG, nullptr},
    {L"CrashLatG", &EngineSettings::CrashLatG, nullptr},
    {L"CrashDurationTenths", &EngineSettings::CrashDurationTenths, nullptr},
    {L"CrashReduction", &EngineSettings::CrashReduction, nullptr},
    {L"WheelbaseMaxTorqueTenths", &EngineSettings::WheelbaseMaxTorqueTenths, nullptr},
};

// Our saves never list more sections than the file holds, so a larger Count is damage: up to this many listed
// sections may be absent (each becomes a default entry), which keeps a huge Count's work to the file's size.
constexpr int32_t kMaxAbsentListedSections = 100;

bool IsSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

}  // namespace

int32_t ReadIniInt(const IniDocument& ini, std::wstring_view section, std::wstring_view key, int32_t fallback) {
    const std::wstring text = ini.GetString(section, key, DecimalText(fallback), kIntegerBufferChars);
    size_t at = 0;
    while (at < text.size() && IsSpace(text[at])) ++at;
    const bool negative = at < text.size() && text[at] == L'-';
    if (at < text.size() && (text[at] == L'-' || text[at] == L'+')) ++at;
    const size_t digits = at;
    int64_t magnitude = 0;
    for (; at < text.size() && text[at] >= L'0' && text[at] <= L'9'; ++at) {
        magnitude = std::min<int64_t>(magnitude * 10 + (text[at] - L'0'), int64_t{1} << 32);  // saturates
    }
    if (at == digits) return fallback;
    while (at < text.size() && IsSpace(text[at])) ++at;
    if (at != text.size()) return fallback;
    return static_cast<int32_t>(std::clamp<int64_t>(negative ? -magnitude : magnitude, INT32_MIN, INT32_MAX));
}

int32_t ReadSectionCount(const IniDocument& ini, std::wstring_view section) {
    const int64_t held = static_cast<int64_t>(ini.SectionCount()) + kMaxAbsentListedSections;
    return static_cast<int32_t>(std::min<int64_t>(ReadIniInt(ini, section, L"Count", 0), held));
}

EngineSettings ReadSettings(const IniDocument& ini, std::wstring_view section, const EngineSettings& base) {
    EngineSettings result = base;
    for (const SettingsKey& key : kSettingsKeys) {
        if (key.flag != nullptr) {
            int32_t fallback = base.*key.flag ? 1 : 0;
            // An older file names the switch only by its former key; where both stand, the new one wins.
            if (key.flag == &EngineSettings::SimucubeMode) {
                fallback = ReadIniInt(ini, section, L"LegacyIracingFfbHandoff", fallback);
            }
            result.*key.flag = ReadIniInt(ini, section, key.name, fallback) != 0;
            continue;
        }
        // Impacts follow the road texture in files from before they had a key of their own.
        const int32_t fallback = key.number == &EngineSettings::BumpImpacts ? result.Bumps : base.*key.number;
        int32_t value = ReadIniInt(ini, section, key.name, fallback);
        if (key.number == &EngineSettings::OversteerCorrection) value = std::clamp(value, 0, kOversteerCorrectionMax);
        result.*key.number = value;
    }
    return result;
}

void WriteSettings(IniDocument& ini, std::wstring_view section, const EngineSettings& settings) {
    for (const SettingsKey& key : kSettingsKeys) {
        const int32_t value = key.flag != nullptr ? (settings.*key.flag ? 1 : 0) : settings.*key.number;
        ini.SetString(section, key.name, DecimalText(value));
    }
}

}  // namespace veltor
