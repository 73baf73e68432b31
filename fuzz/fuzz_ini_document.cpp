// The INI document over arbitrary file bytes: whatever the text, it serialises back unchanged, and a write
// reads back whole after a trip through the bytes we save.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace veltor;
    const std::wstring text = DecodeIniBytes(std::string_view(reinterpret_cast<const char*>(data), size));
    IniDocument ini = IniDocument::Parse(text);
    if (ini.Serialize() != text) __builtin_trap();

    // A value as odd as the input itself: the first line of it, or more.
    std::wstring value = text.substr(0, std::min<size_t>(text.size(), 60));
    ini.SetString(L"Profile0", L"Name", value);
    ini.SetString(L"Profiles", L"Count", L"3");
    std::replace_if(value.begin(), value.end(), [](wchar_t c) { return c == L'\r' || c == L'\n' || c == L'\0'; }, L' ');

    const IniDocument reread = IniDocument::Parse(DecodeIniBytes(EncodeIniText(ini.Serialize())));
    if (reread.GetString(L"Profile0", L"Name", L"absent", 4096) != value) __builtin_trap();
    if (reread.GetString(L"profiles", L"COUNT", L"absent", 64) != L"3") __builtin_trap();
    return 0;
}
