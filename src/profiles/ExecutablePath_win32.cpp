#include <windows.h>

#include "profiles/ExecutablePath.h"

namespace veltor {

std::wstring ExecutablePath() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::wstring(path, length < MAX_PATH ? length : MAX_PATH - 1);
}

}  // namespace veltor
