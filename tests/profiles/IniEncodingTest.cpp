#include <gtest/gtest.h>

#include <string>

#include "profiles/IniEncoding.h"

namespace veltor {
namespace {

using namespace std::string_literals;

TEST(IniEncoding, DecodesByMarkThenAsUtf8WhenValidElseAsWindows1252) {
    const std::pair<std::string, std::wstring> cases[] = {
        {"", L""},
        {"\xFF\xFE" "a\0\x3D\xD8\x00\xDE"s, L"a\U0001F600"},
        {"\xFE\xFF" "\0a\x6E\x21"s, L"a\u6e21"},
        {"\xFF\xFE" "\x00\xD8" "a\0"s, L"\uFFFDa"},  // a lone surrogate
        {"\xFF\xFE" "a\0b"s, L"a"},                   // an odd last byte
        {"\xEF\xBB\xBF" "J\xC3\xBCrgen", L"J\u00fcrgen"},
        {"\xEF\xBB\xBF" "a\xFF" "b", L"a\uFFFDb"},
        {"\xE6\xB8\xA1\xE8\xBE\xBA", L"\u6e21\u8fba"},
        {"J\xFCrgen \x80\x81", L"J\u00fcrgen \u20ac\u0081"},
        {"\xC0\xAF", L"\u00C0\u00AF"},               // overlong: not UTF-8
        {"\xED\xA0\x80", L"\u00ED\u00A0\u20AC"},     // an encoded surrogate: not UTF-8
    };
    for (const auto& [bytes, text] : cases) EXPECT_EQ(DecodeIniBytes(bytes), text) << bytes;
}

TEST(IniEncoding, WritesUtf16LeWithItsMarkAndReadsItBack) {
    const std::wstring text = L"[Profile0]\r\nName=J\u00fcrgen M\u00fcller \u0141ukasz \u6e21\u8fba \U0001F600\r\n";
    const std::string bytes = EncodeIniText(text);
    EXPECT_EQ(bytes.substr(0, 6), "\xFF\xFE[\0P\0"s);
    EXPECT_EQ(bytes.size(), 2 + 2 * (text.size() + (sizeof(wchar_t) == 4 ? 1 : 0)));
    EXPECT_EQ(DecodeIniBytes(bytes), text);
}

}  // namespace
}  // namespace veltor
