#include "profiles/SettingsSection.h"

#include <algorithm>
#include <array>
#include <string>

#include "engine/SettingsKeys.h"
#include "profiles/ProfileText.h"

namespace veltor {
namespace {

// The platform reads an integer key into 64 characters.
constexpr size_t kIntegerBufferChars = 64;
constexpr int32_t kOversteerCorrectionMax = 150;

// Our saves never list more sections than the file holds, so a Count past the last numbered section is damage:
// up to this many listed sections may be missing (each becomes a default entry), which keeps a huge Count's
// work to what the file holds.
constexpr int32_t kMaxAbsentListedSections = 100;

// The keys' names as the document takes them, made once (the names are ASCII).
const std::array<std::wstring, kSettingsFieldCount>& WideKeyNames() {
    static const std::array<std::wstring, kSettingsFieldCount> names = [] {
        std::array<std::wstring, kSettingsFieldCount> wide;
        for (size_t i = 0; i < kSettingsFieldCount; ++i) {
            wide[i].assign(kSettingsKeys[i].name.begin(), kSettingsKeys[i].name.end());
        }
        return wide;
    }();
    return names;
}

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

int32_t ReadSectionCount(const IniDocument& ini, std::wstring_view section, std::wstring_view itemPrefix) {
    const int64_t held = int64_t{ini.HighestNumberedSection(itemPrefix)} + 1 + kMaxAbsentListedSections;
    return static_cast<int32_t>(std::min<int64_t>(ReadIniInt(ini, section, L"Count", 0), held));
}

EngineSettings ReadSettings(const IniDocument& ini, std::wstring_view section, const EngineSettings& base) {
    EngineSettings result = base;
    for (size_t i = 0; i < kSettingsFieldCount; ++i) {
        const SettingsKey& key = kSettingsKeys[i];
        const std::wstring& name = WideKeyNames()[i];
        if (key.flag != nullptr) {
            int32_t fallback = base.*key.flag ? 1 : 0;
            // An older file names the switch only by its former key; where both stand, the new one wins.
            if (key.flag == &EngineSettings::SimucubeMode) {
                fallback = ReadIniInt(ini, section, L"LegacyIracingFfbHandoff", fallback);
            }
            result.*key.flag = ReadIniInt(ini, section, name, fallback) != 0;
            continue;
        }
        // Impacts follow the road texture in files from before they had a key of their own.
        const int32_t fallback = key.number == &EngineSettings::BumpImpacts ? result.Bumps : base.*key.number;
        int32_t value = ReadIniInt(ini, section, name, fallback);
        if (key.number == &EngineSettings::OversteerCorrection) value = std::clamp(value, 0, kOversteerCorrectionMax);
        result.*key.number = value;
    }
    return result;
}

void WriteSettings(IniDocument& ini, std::wstring_view section, const EngineSettings& settings) {
    for (size_t i = 0; i < kSettingsFieldCount; ++i) {
        const SettingsKey& key = kSettingsKeys[i];
        const int32_t value = key.flag != nullptr ? (settings.*key.flag ? 1 : 0) : settings.*key.number;
        ini.SetString(section, WideKeyNames()[i], DecimalText(value));
    }
}

}  // namespace veltor
