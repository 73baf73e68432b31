#include <fstream>
#include <iterator>

#include "KeyByKeyWrite.h"
#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"
#include "platform/TextConversion.h"

namespace veltor::bench {

bool WriteKeyAlone(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                   const std::wstring& value) {
    const std::string narrow = WideToUtf8(path);
    std::ifstream in(narrow, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    IniDocument ini = IniDocument::Parse(DecodeIniBytes(bytes));
    ini.SetString(section, key, value);
    std::ofstream out(narrow, std::ios::binary | std::ios::trunc);
    out << EncodeIniText(ini.Serialize());
    return static_cast<bool>(out);
}

const char* KeyByKeyWriter() { return "whole-file rewrite per key over our document, no flush"; }

}  // namespace veltor::bench
