#pragma once
#include <cstdint>
#include <string_view>

#include "settings/EngineSettings.h"
#include "profiles/IniDocument.h"

namespace veltor {

// One integer key: the value read as a base-10 number with leading white space and a sign allowed and only
// white space after it, saturated to 32 bits; the default for an absent key or any other text.
int32_t ReadIniInt(const IniDocument& ini, std::wstring_view section, std::wstring_view key, int32_t fallback);

// `Count` of a section that lists numbered sections (`itemPrefix` followed by 0, 1, ...), bounded by the
// numbered sections the file holds.
int32_t ReadSectionCount(const IniDocument& ini, std::wstring_view section, std::wstring_view itemPrefix);

// The 25 keys of a settings section over a base record: a missing key keeps the base's value.
EngineSettings ReadSettings(const IniDocument& ini, std::wstring_view section, const EngineSettings& base);

// The 25 keys in the record's order, numbers in decimal and switches as 1 or 0.
void WriteSettings(IniDocument& ini, std::wstring_view section, const EngineSettings& settings);

}  // namespace veltor
