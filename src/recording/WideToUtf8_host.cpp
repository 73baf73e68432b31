#include <cstdint>

#include "recording/WideToUtf8.h"

namespace veltor {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

// Host wide text is UTF-32; a value that is no Unicode scalar becomes U+FFFD, as on Windows.
size_t EncodeUtf8(char32_t c, char (&bytes)[4]) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = kReplacementCharacter;
    if (c < 0x80) {
        bytes[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        bytes[0] = static_cast<char>(0xC0 | (c >> 6));
        bytes[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        bytes[0] = static_cast<char>(0xE0 | (c >> 12));
        bytes[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        bytes[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    bytes[0] = static_cast<char>(0xF0 | (c >> 18));
    bytes[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    bytes[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    bytes[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

}  // namespace

void ConvertWideToUtf8(std::wstring_view text, char* out, size_t capacity) {
    size_t written = 0;
    for (const wchar_t w : text) {
        char bytes[4];
        const size_t count = EncodeUtf8(static_cast<char32_t>(static_cast<uint32_t>(w)), bytes);
        for (size_t i = 0; i < count; ++i) {
            if (written == capacity) return;
            out[written++] = bytes[i];
        }
    }
}

std::string ToUtf8(std::wstring_view text) {
    std::string result;
    for (const wchar_t w : text) {
        char bytes[4];
        result.append(bytes, EncodeUtf8(static_cast<char32_t>(static_cast<uint32_t>(w)), bytes));
    }
    return result;
}

}  // namespace veltor
