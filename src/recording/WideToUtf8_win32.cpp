#include <windows.h>

#include "recording/WideToUtf8.h"

namespace veltor {

// The result is not looked at: a field too small gets what the call wrote before it gave up.
void ConvertWideToUtf8(std::wstring_view text, char* out, size_t capacity) {
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out, static_cast<int>(capacity),
                        nullptr, nullptr);
}

std::string ToUtf8(std::wstring_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string result(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

}  // namespace veltor
