#include <gtest/gtest.h>

#include <string>

#include "profiles/IniDocument.h"

// How values read is checked against the platform's own functions under Wine (IniPlatformTest_win32.cpp);
// here is what a save does to the text around them.
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

}  // namespace
}  // namespace veltor
