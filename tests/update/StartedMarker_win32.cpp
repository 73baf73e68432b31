#include <windows.h>

// Stands in for the new program in the restart script's test: started with no arguments, it leaves the
// file "<its own path>.started" beside itself.
int main() {
    wchar_t path[MAX_PATH + 16] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return 1;
    lstrcatW(path, L".started");
    HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    CloseHandle(file);
    return 0;
}
