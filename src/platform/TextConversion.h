#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Text between the platform's narrow code pages and wide text, and wide text to UTF-8: the one home of
// these conversions for every subsystem. The Windows build links TextConversion_win32.cpp
// (MultiByteToWideChar, WideCharToMultiByte), host builds the twin in TextConversion_host.cpp.
namespace veltor {
namespace text {

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

}  // namespace text

// UTF-8 to wide text: an empty input, or a conversion that yields nothing, gives an empty result; text
// behind a NUL byte is not converted.
std::wstring Utf8ToWide(const std::string& text);

// The whole text as UTF-8; a unit that is no character becomes U+FFFD.
std::string WideToUtf8(std::wstring_view text);

// Converts `text` to UTF-8 into `out`, writing at most `capacity` bytes: as far as the bytes go, even when
// that stops inside a character. The caller terminates.
void ConvertWideToUtf8(std::wstring_view text, char* out, size_t capacity);

}  // namespace veltor
