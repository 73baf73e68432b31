#include "update/VersionText.h"

#include "update/ProductVersion.h"

namespace veltor {
namespace {

// wcstol's whitespace in the C locale.
bool IsSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// Base-10 conversion of the whole piece as the target's wcstol does it: leading white space, a sign,
// digits, and a 32-bit long that saturates. False when the digits do not reach the end of the piece.
bool ConvertPiece(std::wstring_view piece, int64_t& value) {
    constexpr int64_t kLongMax = 2147483647;
    size_t at = 0;
    while (at < piece.size() && IsSpace(piece[at])) ++at;
    bool negative = false;
    if (at < piece.size() && (piece[at] == L'+' || piece[at] == L'-')) negative = piece[at++] == L'-';
    const size_t digitsStart = at;
    int64_t magnitude = 0;
    for (; at < piece.size() && piece[at] >= L'0' && piece[at] <= L'9'; ++at) {
        magnitude = magnitude * 10 + (piece[at] - L'0');
        if (magnitude > kLongMax + 1) magnitude = kLongMax + 1;
    }
    if (at == digitsStart || at != piece.size()) return false;
    value = negative ? -magnitude : (magnitude > kLongMax ? kLongMax : magnitude);
    return true;
}

}  // namespace

bool ParseVersion(std::wstring_view text, VersionNumbers& parts) {
    if (text.empty()) return false;
    VersionNumbers parsed{};
    size_t start = 0;
    for (size_t i = 0;; ++i) {
        const size_t dot = text.find(L'.', start);
        const std::wstring_view piece = text.substr(start, dot == std::wstring_view::npos ? dot : dot - start);
        int64_t value = 0;
        if (piece.empty() || !ConvertPiece(piece, value) || value < 0) return false;
        parsed[i] = static_cast<int32_t>(value);
        if (dot == std::wstring_view::npos && i != 3) return false;
        if (i == 3) break;
        start = dot + 1;
    }
    parts = parsed;
    return true;
}

std::wstring CurrentVersionText() {
    std::wstring text;
    for (size_t i = 0; i < ProductVersion.size(); ++i) {
        if (i > 0) text += L'.';
        text += std::to_wstring(ProductVersion[i]);
    }
    return text;
}

bool IsNewerVersion(const VersionNumbers& current, const VersionNumbers& offered) {
    for (size_t i = 0; i < current.size(); ++i) {
        if (current[i] != offered[i]) return current[i] < offered[i];
    }
    return false;
}

}  // namespace veltor
