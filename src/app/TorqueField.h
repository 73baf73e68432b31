#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace veltor {

// The torque box's text for tenths of a newton metre: 125 shows as "12.5"; none given (0 or less) as empty.
std::wstring TorqueFieldText(int32_t tenths);

// Tenths of a newton metre from what the user typed: a number at the start, with a comma or a point
// before its fraction, anything after it ignored; 10 to 9990 when above 0, else 0 (none given).
int32_t TorqueTenthsFromText(std::wstring_view text);

}  // namespace veltor
