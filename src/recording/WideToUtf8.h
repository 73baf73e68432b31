#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace veltor {

// Converts `text` to UTF-8 into `out`, writing at most `capacity` bytes: as far as the bytes go, even when
// that stops inside a character. The caller terminates. Windows: WideCharToMultiByte with CP_UTF8.
void ConvertWideToUtf8(std::wstring_view text, char* out, size_t capacity);

// The whole text as UTF-8.
std::string ToUtf8(std::wstring_view text);

}  // namespace veltor
