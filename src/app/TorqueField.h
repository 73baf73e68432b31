#pragma once
#include <cstdint>
#include <string>

namespace veltor {

// The torque box's text for tenths of a newton metre: 125 shows as "12.5"; none given (0 or less) as empty.
std::wstring TorqueFieldText(int32_t tenths);

}  // namespace veltor
