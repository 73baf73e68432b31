#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "ProfileStoreFolder.h"
#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"

namespace veltor {
namespace {

// A file the way users and older versions leave it: comments, blanks, odd spacing, quotes, a case-differing
// duplicate section, a padded header, a key before any section, lone CR and LF line ends, control
// characters and non-ASCII text.
const std::wstring kAwkwardFile =
    L"top=1\r\n; comment line\r\n[Awkward]\r\n  Spaced Key  =  spaced value  \r\neq=a=b=c\r\nquoted=\"in quotes\"\r\n"
    L"single='in single'\r\nhalf=\"open\r\nempty=\r\nnovalue\r\n;c=comment\r\ndup=first\r\ndup=second\r\n\r\n"
    L"[awkward]\r\nshadow=second section\r\n[Names]\r\nn1=J\u00fcrgen M\u00fcller\r\n[ Padded ]\r\nk=padded\r\n"
    L"[Br]x]\r\nk=br\r\n[Cr]\rk=cr\n[Lf]\n\n  k = lf \n[Blanks]\r\nk=\x1A c\x0B\r\nnbsp=\u00A0a\u00A0\r\n";

struct Write {
    const wchar_t* section;
    const wchar_t* key;
    const wchar_t* value;
};

const Write kWrites[] = {
    {L"Awkward", L"eq", L"x = y"},          {L"AWKWARD", L"spaced key", L"  two  blanks  "},
    {L"Awkward", L"new", L"\"quoted\""},    {L"awkward", L"shadow", L"written"},
    {L"Names", L"n1", L"J\u00fcrgen  M\u00fcller"}, {L"Names", L"n2", L"\u0141ukasz"},
    {L"Names", L"n3", L"\u6e21\u8fba"},     {L"Fresh", L"k", L"; not a comment"},
    {L"Fresh", L"k2", L"[not a section]"},  {L"Padded", L"k", L"changed"},
    {L"Fresh", L"lead", L" lead"},          {L"Fresh", L"trail", L"trail\t"},
    {L"Fresh", L"single", L"'single'"},     {L"Fresh", L"quote", L"\""},
    {L"Fresh", L"mixed", L"\"'"},
};

const std::pair<const wchar_t*, const wchar_t*> kUnwritten[] = {
    {L"Awkward", L"quoted"}, {L"Awkward", L"single"}, {L"Awkward", L"half"}, {L"Awkward", L"empty"},
    {L"Awkward", L"novalue"}, {L"Awkward", L"absent"}, {L"Nowhere", L"k"}, {L"Names", L"N1"},
    {L"Awkward", L";c"}, {L"Awkward", L"dup"}, {L"", L"top"}, {L"Br]x", L"k"}, {L"Br", L"k"},
    {L"Cr", L"k"}, {L"Lf", L"k"}, {L"Blanks", L"k"}, {L"Blanks", L"nbsp"},
};

std::wstring PlatformRead(const std::wstring& path, const wchar_t* section, const wchar_t* key, DWORD size) {
    std::wstring buffer(size, L'\0');
    const DWORD length = GetPrivateProfileStringW(section, key, L"DEF", buffer.data(), size, path.c_str());
    return buffer.substr(0, length);
}

void ExpectSameReads(const std::wstring& path, const IniDocument& ours) {
    auto compare = [&](const wchar_t* section, const wchar_t* key) {
        for (const DWORD size : {128u, 5u, 3u, 1u}) {
            EXPECT_EQ(ours.GetString(section, key, L"DEF", size), PlatformRead(path, section, key, size))
                << section << L"/" << key << L" in " << size;
        }
    };
    for (const Write& write : kWrites) compare(write.section, write.key);
    for (const auto& [section, key] : kUnwritten) compare(section, key);
}

// Over our awkward file, and over a file the platform starts itself (in its 8-bit code page).
TEST(IniPlatform, FilesThePlatformWritesReadTheSameThroughOurDocument) {
    for (const bool fromNothing : {false, true}) {
        test::ProfileStoreFolder folder;
        if (!fromNothing) folder.Write(EncodeIniText(kAwkwardFile));
        for (const Write& write : kWrites) {
            ASSERT_TRUE(WritePrivateProfileStringW(write.section, write.key, write.value, folder.IniPath().c_str()));
        }
        ExpectSameReads(folder.IniPath(), IniDocument::Parse(DecodeIniBytes(folder.Read())));
    }
}

// Written as the store writes its file (the host tests pin that it does), non-ASCII names included.
TEST(IniPlatform, FilesWeWriteReadTheSameThroughThePlatformAndGiveBackEveryValue) {
    test::ProfileStoreFolder folder;
    IniDocument ours = IniDocument::Parse(kAwkwardFile);
    for (const Write& write : kWrites) ours.SetString(write.section, write.key, write.value);
    folder.Write(EncodeIniText(ours.Serialize()));
    ExpectSameReads(folder.IniPath(), ours);
    for (const Write& write : kWrites) {
        EXPECT_EQ(PlatformRead(folder.IniPath(), write.section, write.key, 128), write.value) << write.key;
    }
}

}  // namespace
}  // namespace veltor
