#pragma once
#include <string>
#include <string_view>

namespace veltor {

// The text of an INI file from its bytes: UTF-16LE or UTF-16BE after their byte-order mark, UTF-8 after its
// mark or when the bytes are valid UTF-8, Windows-1252 otherwise. Never fails: what does not decode becomes
// U+FFFD.
std::wstring DecodeIniBytes(std::string_view bytes);

// The bytes we write: UTF-16LE after its mark, the one form that the platform's profile functions read as
// Unicode on every version.
std::string EncodeIniText(std::wstring_view text);

}  // namespace veltor
