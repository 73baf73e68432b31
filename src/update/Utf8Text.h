#pragma once
#include <string>
#include <string_view>

namespace veltor {

// UTF-8 to wide text and back, through the platform's conversions (MultiByteToWideChar and
// WideCharToMultiByte on Windows). An empty input, or a conversion that yields nothing, gives an empty
// result; text behind a NUL byte is not converted.
std::wstring Utf8ToWide(const std::string& text);
std::string WideToUtf8(std::wstring_view text);

}  // namespace veltor
