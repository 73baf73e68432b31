#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/EngineSettings.h"

namespace veltor {

// One settings field and the INI key it bears: a number or a switch (the other member is null).
struct SettingsKey {
    std::string_view name;
    int32_t EngineSettings::*number;
    bool EngineSettings::*flag;
};

// Every field of the record, in the order the profile file reads and writes them.
constexpr size_t kSettingsFieldCount = 25;
extern const SettingsKey kSettingsKeys[kSettingsFieldCount];

// Sets the field that bears the INI key `key` (case-sensitive). A switch takes any non-zero value as 1.
// False, with the record untouched, for a key that names no field.
bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value);

// Decimal text with an optional sign and nothing else, within the i32 range.
bool ParseSettingInteger(std::string_view text, int32_t& value);

}  // namespace veltor
