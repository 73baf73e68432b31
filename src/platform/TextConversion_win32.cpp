#include <windows.h>

#include "platform/TextConversion.h"

namespace veltor::text {

// Length -1: the input counts up to its NUL, and the result includes the terminator.
int WideLength(CodePage page, const std::string& text) {
    return MultiByteToWideChar(static_cast<UINT>(page), 0, text.c_str(), -1, nullptr, 0);
}

int ConvertToWide(CodePage page, const std::string& text, wchar_t* out, int capacity) {
    return MultiByteToWideChar(static_cast<UINT>(page), 0, text.c_str(), -1, out, capacity);
}

}  // namespace veltor::text

namespace veltor {

// The result is not looked at: a field too small gets what the call wrote before it gave up.
void ConvertWideToUtf8(std::wstring_view text, char* out, size_t capacity) {
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out, static_cast<int>(capacity),
                        nullptr, nullptr);
}

std::string WideToUtf8(std::wstring_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string result(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

}  // namespace veltor
