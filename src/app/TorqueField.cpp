#include "app/TorqueField.h"

#include <algorithm>
#include <cmath>
#include <cwchar>

namespace veltor {
namespace {

constexpr size_t kTorqueTextChars = 15;  // what the box is read into, less the terminator
constexpr double kLeastTenths = 10.0;
constexpr double kMostTenths = 9990.0;

}  // namespace

std::wstring TorqueFieldText(int32_t tenths) {
    if (tenths <= 0) return {};
    wchar_t text[32];
    std::swprintf(text, 32, L"%d.%d", tenths / 10, tenths % 10);
    return text;
}

int32_t TorqueTenthsFromText(std::wstring_view text) {
    std::wstring number(text.substr(0, kTorqueTextChars));
    std::replace(number.begin(), number.end(), L',', L'.');
    wchar_t* end = nullptr;
    const double newtonMetres = std::wcstod(number.c_str(), &end);
    // NaN fails the test too.
    if (end == number.c_str() || !(newtonMetres > 0.0)) return 0;
    return static_cast<int32_t>(std::clamp(std::round(newtonMetres * 10.0), kLeastTenths, kMostTenths));
}

}  // namespace veltor
