#include <windows.h>

#include "KeyByKeyWrite.h"

namespace veltor::bench {

bool WriteKeyAlone(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                   const std::wstring& value) {
    return WritePrivateProfileStringW(section.c_str(), key.c_str(), value.c_str(), path.c_str()) != 0;
}

const char* KeyByKeyWriter() { return "WritePrivateProfileStringW"; }

}  // namespace veltor::bench
