#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/TextConversion.h"

namespace veltor::text {
namespace {

// Windows-1252's 0x80 to 0x9F; the five unassigned bytes map to the same code point, as Windows does.
constexpr char32_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::string_view UpToNul(const std::string& text) {
    return std::string_view(text.c_str(), std::strlen(text.c_str()));
}

bool IsContinuation(unsigned char byte) { return (byte & 0xC0u) == 0x80u; }

// Length of a sequence from its lead byte; 0 for a byte that cannot lead one.
size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80u) return 1;
    if ((lead & 0xE0u) == 0xC0u) return 2;
    if ((lead & 0xF0u) == 0xE0u) return 3;
    if ((lead & 0xF8u) == 0xF0u) return 4;
    return 0;
}

// The smallest code point each length may carry: anything below is an overlong form.
constexpr char32_t kSmallestOfLength[5] = {0, 0, 0x80, 0x800, 0x10000};

// Decodes one UTF-8 sequence at `at`; false for a malformed, overlong or surrogate sequence.
bool DecodeUtf8(std::string_view in, size_t& at, char32_t& code) {
    const auto lead = static_cast<unsigned char>(in[at]);
    const size_t length = SequenceLength(lead);
    if (length == 0 || at + length > in.size()) return false;
    code = length == 1 ? lead : (lead & (0x7Fu >> length));
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(in[at + i]);
        if (!IsContinuation(byte)) return false;
        code = (code << 6) | (byte & 0x3Fu);
    }
    if (code < kSmallestOfLength[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
    at += length;
    return true;
}

// Code points of the text in `page`, written to `out` when it is given. False when the text does not
// decode strictly in that page.
bool Decode(CodePage page, std::string_view in, wchar_t* out, int capacity, int& units) {
    units = 0;
    for (size_t at = 0; at < in.size();) {
        char32_t code = 0;
        if (page == CodePage::Utf8) {
            if (!DecodeUtf8(in, at, code)) return false;
        } else {
            const auto byte = static_cast<unsigned char>(in[at++]);
            code = (byte >= 0x80u && byte < 0xA0u) ? kWindows1252High[byte - 0x80u] : byte;
        }
        if (out != nullptr) {
            if (units >= capacity) return false;
            out[units] = static_cast<wchar_t>(code);
        }
        ++units;
    }
    return true;
}

}  // namespace

int WideLength(CodePage page, const std::string& text) {
    int units = 0;
    return Decode(page, UpToNul(text), nullptr, 0, units) ? units + 1 : 0;
}

int ConvertToWide(CodePage page, const std::string& text, wchar_t* out, int capacity) {
    int units = 0;
    if (out == nullptr || capacity < 1 || !Decode(page, UpToNul(text), out, capacity - 1, units)) return 0;
    out[units] = L'\0';
    return units + 1;
}

}  // namespace veltor::text

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

std::string WideToUtf8(std::wstring_view text) {
    std::string result;
    for (const wchar_t w : text) {
        char bytes[4];
        result.append(bytes, EncodeUtf8(static_cast<char32_t>(static_cast<uint32_t>(w)), bytes));
    }
    return result;
}

}  // namespace veltor
