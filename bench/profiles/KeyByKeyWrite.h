#pragma once
#include <string>

namespace veltor::bench {

// One key written the way the platform's private-profile functions do it: the whole file read, changed and
// written again for this key alone. Windows: WritePrivateProfileStringW; hosts: the same steps over our own
// document, without the flush.
bool WriteKeyAlone(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                   const std::wstring& value);

// Which of the two the program measures.
const char* KeyByKeyWriter();

}  // namespace veltor::bench
