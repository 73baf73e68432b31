#include <gtest/gtest.h>

#include <string>

#include "profiles/IniDocument.h"

namespace veltor {
namespace {

using namespace std::string_literals;

const std::wstring kFile =
    L"top=1\r\n"
    L"[ Spaced ]\r\nk=spaced\r\n"
    L"[Plain]\r\n  Key  =  v 2  \r\nquoted=\"q\"\r\nsingle='q'\r\nopen=\"q\r\nnothing=\"\"\r\nbare\r\n"
    L"eq=a=b\r\n;c=comment\r\ndup=first\r\ndup=second\r\nnul=ab\0cd\r\n"
    L"[plain]\r\nonly=in second\r\n"
    L"[Br]x]\r\nk=br\r\n"
    L"[Cr]\rk=cr\n[Lf]\n\n  k = lf \n"
    L"[Blanks]\r\nk=\x1A c\x0B\r\nnbsp=\u00A0a\u00A0\r\n"s;

// Reads as the platform's GetPrivateProfileStringW gives them.
TEST(IniDocument, ReadsKeysAsThePlatformDoes) {
    const IniDocument ini = IniDocument::Parse(kFile);
    struct Case {
        const wchar_t* section;
        const wchar_t* key;
        size_t buffer;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {L"", L"top", 128, L"1"},          {L"Spaced", L"k", 128, L"spaced"},  {L"PLAIN", L" KEY ", 128, L"v 2"},
        {L"Plain", L"quoted", 128, L"q"},  {L"Plain", L"single", 128, L"q"},   {L"Plain", L"open", 128, L"\"q"},
        {L"Plain", L"nothing", 128, L""},  {L"Plain", L"bare", 128, L"DEF"},   {L"Plain", L"eq", 128, L"a=b"},
        {L"Plain", L";c", 128, L"comment"}, {L"Plain", L"dup", 128, L"first"}, {L"Plain", L"only", 128, L"DEF"},
        {L"Plain", L"nul", 128, L"ab"},    {L"Br]x", L"k", 128, L"br"},        {L"Br", L"k", 128, L"DEF"},
        {L"Cr", L"k", 128, L"cr"},         {L"Lf", L"k", 128, L"lf"},          {L"Blanks", L"k", 128, L"c"},
        {L"Blanks", L"nbsp", 128, L"\u00A0a\u00A0"},                            {L"Plain", L"Key", 3, L"v "},
        {L"Plain", L"Key", 1, L""},        {L"Plain", L"Key", 0, L""},         {L"None", L"k", 3, L"DE"},
        {L"Plain", L"", 128, L"DEF"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ini.GetString(c.section, c.key, L"DEF", c.buffer), c.expected) << c.section << L"/" << c.key;
    }
}

// Whatever the text, parsing and serialising give it back, so that a save keeps every line it doesn't write.
TEST(IniDocument, SerialisesUntouchedTextExactly) {
    const std::wstring texts[] = {
        L"", L"\r\n\r\n", L"no end", L"[a]", L"; comment\n\n[S]\r\nk = v ; not a comment\r\r\n\n[S]\nk=2",
        kFile, L"\0[x]\0=\0\n"s};
    for (const std::wstring& text : texts) EXPECT_EQ(IniDocument::Parse(text).Serialize(), text);
}

TEST(IniDocument, WritesReplaceInPlaceAppendToTheirSectionAndKeepEverythingElse) {
    struct Case {
        const wchar_t* before;
        const wchar_t* after;
    };
    const Case cases[] = {
        {L"", L"[S]\r\nk=v\r\n"},
        {L"; keep\n[s]\nK = old ; x  \n\n[T]\n", L"; keep\n[s]\nK = v  \n\n[T]\n"},
        {L"[S]\na=1\n\n\n[T]\nb=2", L"[S]\na=1\nk=v\r\n\n\n[T]\nb=2"},
        {L"[T]\nb=2", L"[T]\nb=2\r\n[S]\r\nk=v\r\n"},
        {L"[S]\nk\n", L"[S]\nk=v\n"},
        {L"[S]\nk=1\n[s]\nk=2\n", L"[S]\nk=v\n[s]\nk=2\n"},
        {L"[S]\nx=1", L"[S]\nx=1\r\nk=v\r\n"},
    };
    for (const Case& c : cases) {
        IniDocument ini = IniDocument::Parse(c.before);
        ini.SetString(L"S", L"k", L"v");
        EXPECT_EQ(ini.Serialize(), c.after) << c.before;
    }
}

// A value must read back as written, after any number of other writes in the same section.
TEST(IniDocument, AwkwardValuesReadBackAsWritten) {
    const std::wstring values[] = {L"",         L" lead",   L"trail\t", L"\"quoted\"", L"'single'",
                                   L"\"",       L"a = b",   L"; x",     L"[S]",        L"J\u00fcrgen M\u00fcller",
                                   L"\u0141ukasz", L"\u6e21\u8fba", L"\"'", L"x\"",     L"  \"both\"  "};
    IniDocument ini = IniDocument::Parse(L"[S]\r\nfirst=1\r\nlast=2\r\n");
    for (int round = 0; round < 2; ++round) {
        for (const std::wstring& value : values) {
            ini.SetString(L"S", L"first", value);
            ini.SetString(L"S", L"added", value + L"!");
            EXPECT_EQ(ini.GetString(L"s", L"first", L"DEF", 128), value);
            EXPECT_EQ(ini.GetString(L"s", L"added", L"DEF", 128), value + L"!");
            EXPECT_EQ(ini.GetString(L"s", L"last", L"DEF", 128), L"2");
            EXPECT_EQ(IniDocument::Parse(ini.Serialize()).GetString(L"S", L"first", L"DEF", 128), value);
        }
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
