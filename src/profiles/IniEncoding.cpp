#include "profiles/IniEncoding.h"

#include <cstdint>
#include <type_traits>

namespace veltor {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

// Windows-1252's 0x80 to 0x9F; the five unassigned bytes keep their own value, as the platform maps them.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// Wide text is UTF-16 on Windows and UTF-32 on hosts.
void AppendCodePoint(std::wstring& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c > 0xFFFF) {
            c -= 0x10000;
            out.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
            return;
        }
    }
    out.push_back(static_cast<wchar_t>(c));
}

// One UTF-8 sequence at `at`; false, with `at` unchanged, for a malformed, overlong or surrogate sequence.
bool DecodeUtf8At(std::string_view in, size_t& at, char32_t& code) {
    static constexpr char32_t kSmallest[5] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(in[at]);
    const size_t length = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3
                                        : (lead & 0xF8) == 0xF0 ? 4 : 0;
    if (length == 0 || in.size() - at < length) return false;
    char32_t c = length == 1 ? lead : (lead & (0x7Fu >> length));
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(in[at + i]);
        if ((byte & 0xC0) != 0x80) return false;
        c = (c << 6) | (byte & 0x3Fu);
    }
    if (c < kSmallest[length] || c > 0x10FFFF || IsSurrogate(c)) return false;
    code = c;
    at += length;
    return true;
}

bool IsValidUtf8(std::string_view in) {
    char32_t code = 0;
    for (size_t at = 0; at < in.size();) {
        if (!DecodeUtf8At(in, at, code)) return false;
    }
    return true;
}

std::wstring DecodeUtf8(std::string_view in) {
    std::wstring out;
    out.reserve(in.size());
    for (size_t at = 0; at < in.size();) {
        char32_t code = 0;
        if (!DecodeUtf8At(in, at, code)) {
            code = kReplacement;
            ++at;
        }
        AppendCodePoint(out, code);
    }
    return out;
}

std::wstring DecodeWindows1252(std::string_view in) {
    std::wstring out;
    out.reserve(in.size());
    for (const char ch : in) {
        const auto byte = static_cast<unsigned char>(ch);
        out.push_back(static_cast<wchar_t>(byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80] : byte));
    }
    return out;
}

// A trailing odd byte carries no unit and is dropped.
std::wstring DecodeUtf16(std::string_view in, bool bigEndian) {
    std::wstring out;
    out.reserve(in.size() / 2);
    auto unitAt = [&](size_t i) {
        const auto first = static_cast<unsigned char>(in[i]);
        const auto second = static_cast<unsigned char>(in[i + 1]);
        return static_cast<char32_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
    };
    const size_t units = in.size() / 2;
    for (size_t i = 0; i < units; ++i) {
        char32_t c = unitAt(2 * i);
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units) {
            const char32_t low = unitAt(2 * (i + 1));
            if (low >= 0xDC00 && low <= 0xDFFF) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        AppendCodePoint(out, IsSurrogate(c) ? kReplacement : c);
    }
    return out;
}

void AppendUnit(std::string& out, char32_t unit) {
    out.push_back(static_cast<char>(unit & 0xFF));
    out.push_back(static_cast<char>(unit >> 8));
}

}  // namespace

std::wstring DecodeIniBytes(std::string_view bytes) {
    if (bytes.starts_with(kUtf16LeMark)) return DecodeUtf16(bytes.substr(2), false);
    if (bytes.starts_with(kUtf16BeMark)) return DecodeUtf16(bytes.substr(2), true);
    if (bytes.starts_with(kUtf8Mark)) return DecodeUtf8(bytes.substr(3));
    return IsValidUtf8(bytes) ? DecodeUtf8(bytes) : DecodeWindows1252(bytes);
}

std::string EncodeIniText(std::wstring_view text) {
    std::string out(kUtf16LeMark);
    out.reserve(2 + 2 * text.size());
    for (const wchar_t w : text) {
        auto c = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(w));
        if constexpr (sizeof(wchar_t) == 2) {
            AppendUnit(out, c);  // already UTF-16; a lone surrogate goes out as it came in
        } else if (c > 0xFFFF && c <= 0x10FFFF) {
            c -= 0x10000;
            AppendUnit(out, 0xD800 + (c >> 10));
            AppendUnit(out, 0xDC00 + (c & 0x3FF));
        } else {
            AppendUnit(out, IsSurrogate(c) || c > 0x10FFFF ? kReplacement : c);
        }
    }
    return out;
}

}  // namespace veltor
