#include <gtest/gtest.h>

#include <string>

#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"

// How values read is checked against the platform's own functions under Wine (IniPlatformTest_win32.cpp);
// here is what a save does to the text around them, and the bytes the text is read from and written as.
namespace veltor {
namespace {

using namespace std::string_literals;

// Whatever the text, parsing and serialising give it back, so that a save keeps every line it doesn't write.
TEST(IniDocument, SerialisesUntouchedTextExactly) {
    const std::wstring texts[] = {
        L"", L"\r\n\r\n", L"no end", L"[a]", L"; comment\n\n[S]\r\nk = v ; not a comment\r\r\n\n[S]\nk=2",
        L"top=1\r\n[ Spaced ]\r\n  Key  =  v 2  \r\nbare\r\n[Cr]\rk=cr\n[Br]x]\r\nk=\x1A c\x0B\r\n", L"\0[x]\0=\0\n"s};
    for (const std::wstring& text : texts) EXPECT_EQ(IniDocument::Parse(text).Serialize(), text);
}

TEST(IniDocument, WritesReplaceInPlaceAppendToTheirSectionAndKeepEverythingElse) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {  // the file before and after S/k=v
        {L"", L"[S]\r\nk=v\r\n"},
        {L"; keep\n[s]\nK = old ; x  \n\n[T]\n", L"; keep\n[s]\nK = v  \n\n[T]\n"},
        {L"[S]\na=1\n\n\n[T]\nb=2", L"[S]\na=1\nk=v\r\n\n\n[T]\nb=2"},
        {L"[T]\nb=2", L"[T]\nb=2\r\n[S]\r\nk=v\r\n"},
        {L"[S]\nk\n", L"[S]\nk=v\n"},
        {L"[S]\nk=1\n[s]\nk=2\n", L"[S]\nk=v\n[s]\nk=2\n"},
        {L"[S]\nx=1", L"[S]\nx=1\r\nk=v\r\n"},
    };
    for (const auto& [before, after] : cases) {
        IniDocument ini = IniDocument::Parse(before);
        ini.SetString(L"S", L"k", L"v");
        EXPECT_EQ(ini.Serialize(), after) << before;
    }
}

// A name can't slip a line of its own into the file.
TEST(IniDocument, LineBreaksAndNulsInAValueBecomeBlanks) {
    IniDocument ini;
    ini.SetString(L"S", L"k", L"a\r\n[Profiles]\nCount=9\0x"s);
    const IniDocument reread = IniDocument::Parse(ini.Serialize());
    EXPECT_EQ(reread.GetString(L"S", L"k", L"DEF", 128), L"a  [Profiles] Count=9 x");
    EXPECT_EQ(reread.GetString(L"Profiles", L"Count", L"DEF", 128), L"DEF");
}

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
