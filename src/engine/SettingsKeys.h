#pragma once
#include <cstdint>
#include <string_view>

#include "engine/EngineSettings.h"

namespace veltor {

// Sets the field that bears the INI key `key` (case-sensitive). A switch takes any non-zero value as 1.
// False, with the record untouched, for a key that names no field.
bool SetSettingByKey(EngineSettings& settings, std::string_view key, int32_t value);

// Decimal text with an optional sign and nothing else, within the i32 range.
bool ParseSettingInteger(std::string_view text, int32_t& value);

}  // namespace veltor
