#include "settings/ButtonActions.h"

#include <cwchar>

#include "settings/ValueText.h"

namespace veltor {
namespace {

// The GUID's text form walks its bytes in this order: Data1, Data2 and Data3 are little-endian numbers, the
// eight bytes of Data4 stand as they are. -1 marks a hyphen.
constexpr int kTextOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
constexpr size_t kGuidTextChars = 38;  // with the braces

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    return -1;
}

bool ParseGuid(std::wstring_view text, std::array<uint8_t, 16>& bytes) {
    if (text.size() != kGuidTextChars || text.front() != L'{' || text.back() != L'}') return false;
    size_t at = 1;
    for (int index : kTextOrder) {
        if (index < 0) {
            if (text[at++] != L'-') return false;
            continue;
        }
        const int high = HexDigit(text[at]);
        const int low = HexDigit(text[at + 1]);
        if (high < 0 || low < 0) return false;
        bytes[static_cast<size_t>(index)] = static_cast<uint8_t>(high * 16 + low);
        at += 2;
    }
    return true;
}

bool ParseButtonIndex(std::wstring_view text, int32_t& button) {
    if (text.empty() || text.size() > 3) return false;
    button = 0;
    for (wchar_t c : text) {
        if (c < L'0' || c > L'9') return false;
        button = button * 10 + (c - L'0');
    }
    return button < kBindableButtons;
}

}  // namespace

std::wstring ButtonBindingText(const ButtonBinding& binding) {
    if (!binding.IsSet()) return {};
    std::wstring text = L"{";
    wchar_t pair[3];
    for (int index : kTextOrder) {
        if (index < 0) {
            text += L'-';
            continue;
        }
        std::swprintf(pair, 3, L"%02X", binding.controller[static_cast<size_t>(index)]);
        text += pair;
    }
    return text + L"}," + std::to_wstring(binding.button);
}

ButtonBinding ParseButtonBinding(std::wstring_view text) {
    ButtonBinding binding;
    const size_t comma = text.find(L',');
    if (comma == std::wstring_view::npos || !ParseGuid(text.substr(0, comma), binding.controller) ||
        !ParseButtonIndex(text.substr(comma + 1), binding.button)) {
        return {};
    }
    return binding;
}

std::wstring SteppedFromWheelLine(const SettingRow& setting, int32_t value) {
    return std::wstring(setting.label) + L" set to " + FormatValueText(setting.text, value) + L" from the wheel.";
}

}  // namespace veltor
