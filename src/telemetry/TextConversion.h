#pragma once
#include <cstdint>
#include <string>

// Narrow to wide text, as the platform's multi-byte conversion does it. The Windows build links
// TextConversion_win32.cpp (MultiByteToWideChar), host builds the twin in TextConversion_host.cpp.
namespace veltor::text {

enum class CodePage : uint32_t {
    Ansi = 0,      // the system's ANSI code page; Windows-1252 on hosts
    Utf8 = 65001,
};

// Wide units that converting `text` up to its first NUL gives, the terminator included; 0 when the text
// does not convert in that code page.
int WideLength(CodePage page, const std::string& text);
// Converts `text` up to its first NUL into `out`, which has room for `capacity` units. Returns the units
// written, the terminator included, or 0 on failure.
int ConvertToWide(CodePage page, const std::string& text, wchar_t* out, int capacity);

}  // namespace veltor::text
