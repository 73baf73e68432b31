#include "profiles/SettingsSection.h"

#include <algorithm>
#include <string>

#include "profiles/ProfileText.h"

namespace veltor {
namespace {

// The platform reads an integer key into 64 characters.
constexpr size_t kIntegerBufferChars = 64;

// Our saves never list more sections than the file holds, so a Count past the last numbered section is damage:
// up to this many listed sections may be missing (each becomes a default entry), which keeps a huge Count's
// work to what the file holds.
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

int32_t ReadSectionCount(const IniDocument& ini, std::wstring_view section, std::wstring_view itemPrefix) {
    const int64_t held = int64_t{ini.HighestNumberedSection(itemPrefix)} + 1 + kMaxAbsentListedSections;
    return static_cast<int32_t>(std::min<int64_t>(ReadIniInt(ini, section, L"Count", 0), held));
}

EngineSettings ReadSettings(const IniDocument& ini, std::wstring_view section, const EngineSettings& base) {
    EngineSettings result = base;
    for (const SettingRow& row : kSettingRows) {
        // A field that follows another takes that one's value as just read; a former key stands in for the
        // key where it is absent, and the key wins where both stand.
        int32_t fallback = row.follows != nullptr ? result.*row.follows : SettingValue(row, base);
        if (!row.legacyKey.empty()) fallback = ReadIniInt(ini, section, row.legacyKey, fallback);
        int32_t value = ReadIniInt(ini, section, row.key, fallback);
        if (row.clampedOnRead) value = std::clamp(value, row.minimum, row.maximum);
        SetSettingValue(row, result, value);
    }
    return result;
}

void WriteSettings(IniDocument& ini, std::wstring_view section, const EngineSettings& settings) {
    for (const SettingRow& row : kSettingRows) ini.SetString(section, row.key, DecimalText(SettingValue(row, settings)));
}

}  // namespace veltor
