#include "profiles/ProfileText.h"

#include "settings/CarCatalogue.h"

namespace veltor {
namespace {

// The product's wide text is UTF-16, where a character beyond its first plane takes two units: two
// underscores in a section name on every build.
size_t Utf16Units(char32_t code) { return code > 0xFFFF ? 2 : 1; }

bool IsTrimmed(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }

}  // namespace

std::wstring DecimalText(int64_t value) {
    wchar_t digits[24];
    size_t at = sizeof digits / sizeof digits[0];
    uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do {
        digits[--at] = static_cast<wchar_t>(L'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0) digits[--at] = L'-';
    return std::wstring(digits + at, digits + sizeof digits / sizeof digits[0]);
}

std::wstring TrimText(std::wstring_view text) {
    while (!text.empty() && IsTrimmed(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsTrimmed(text.back())) text.remove_suffix(1);
    return std::wstring(text);
}

// Only A to Z are lowered, as comparisons fold only them.
std::wstring NormalizeCarPath(std::wstring_view text) {
    std::wstring path = TrimText(text);
    if (EqualsFoldingAscii(path, L"generic")) return {};
    for (wchar_t& c : path) {
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    }
    return path;
}

std::wstring CarSectionName(int32_t profileIndex, std::wstring_view carPath) {
    std::wstring suffix;
    for (const wchar_t c : carPath) {
        const bool kept = (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9');
        suffix.append(kept ? 1 : Utf16Units(static_cast<char32_t>(c)), kept ? c : L'_');
    }
    if (suffix.empty()) suffix = L"generic";
    return L"CarProfile" + DecimalText(profileIndex) + L"_" + suffix;
}

}  // namespace veltor
