#include "profiles/ProfileText.h"

#include "profiles/CarCatalogue.h"

namespace veltor {
namespace {

bool IsTrimmed(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }

}  // namespace

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
        suffix.push_back(kept ? c : L'_');
        // The product's wide text is UTF-16: a character beyond it takes two units, so two underscores.
        if (sizeof(wchar_t) == 4 && static_cast<uint32_t>(c) > 0xFFFF) suffix.push_back(L'_');
    }
    if (suffix.empty()) suffix = L"generic";
    return L"CarProfile" + std::to_wstring(profileIndex) + L"_" + suffix;
}

}  // namespace veltor
