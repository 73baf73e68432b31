#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace veltor {

// "%d": the platform's C library formats slowly, and a save formats some 25,000 numbers.
std::wstring DecimalText(int64_t value);

// Without leading and trailing blank, tab, CR and LF.
std::wstring TrimText(std::wstring_view text);

// The form in which a car path is compared and stored: trimmed, ASCII letters in lower case, and empty for
// "generic" or a blank path.
std::wstring NormalizeCarPath(std::wstring_view text);

// "CarProfile%d_" and the car path with every character other than a to z and 0 to 9 made an underscore,
// or "generic" for an empty path. Two paths that differ only in such characters share the section.
std::wstring CarSectionName(int32_t profileIndex, std::wstring_view carPath);

}  // namespace veltor
