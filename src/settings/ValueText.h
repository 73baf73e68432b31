#pragma once
#include <cstdint>
#include <string>

namespace veltor {

// How a slider shows its whole value beside it, in the unit of its field.
enum class ValueText : uint8_t {
    Whole,           // "%d"
    Percent,         // "%d%%"
    TenthsOfG,       // "6.5 g"
    TenthsOfSecond,  // "1.5 sec"
    Tenths,          // "44.0"
    Hundredths,      // "1.00"
    Thousandths,     // "0.000"
    TenthDegrees,    // "+0.0 deg", signed
};

// The text for `value` (already less the slider's midpoint, where it has one).
std::wstring FormatValueText(ValueText rule, int32_t value);

// The text beside the slider `id` for its value: a settings slider or a car slider.
std::wstring SliderValueText(int32_t id, int32_t value);

}  // namespace veltor
