#include "app/SliderValueText.h"

#include <cwchar>

namespace veltor {

std::wstring SliderValueText(int32_t id, int32_t value) {
    constexpr size_t kTextChars = 32;
    wchar_t text[kTextChars];
    const int32_t q10 = value / 10;
    const int32_t r10 = value % 10;
    switch (id) {
        case 1101:
        case 1105:
        case 1106:
        case 1107:
        case 1115: std::swprintf(text, kTextChars, L"%d%%", value); break;
        case 1112:
        case 1113: std::swprintf(text, kTextChars, L"%d.%d g", q10, r10); break;
        case 1114: std::swprintf(text, kTextChars, L"%d.%d sec", q10, r10); break;
        case 1116: std::swprintf(text, kTextChars, L"%d.%d", q10, r10); break;
        case 1117: std::swprintf(text, kTextChars, L"%d.%03d", value / 1000, value - value / 1000 * 1000); break;
        case 1119: std::swprintf(text, kTextChars, L"%d.%02d", value / 100, value - value / 100 * 100); break;
        // Tenths of a degree around the midpoint 100.
        case 1120: std::swprintf(text, kTextChars, L"%+.1f deg", (value - 100) / 10.0); break;
        default: std::swprintf(text, kTextChars, L"%d", value); break;
    }
    return text;
}

}  // namespace veltor
