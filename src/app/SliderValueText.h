#pragma once
#include <cstdint>
#include <string>

namespace veltor {

// The text beside a slider for its whole value, in the unit of the slider's field ("6.5 g", "+0.0 deg").
std::wstring SliderValueText(int32_t id, int32_t value);

}  // namespace veltor
