// Stands in for the analyzer beside the program in tests: writes the arguments it was started with, one a
// line (UTF-16), to "analyzer-arguments.txt" beside itself, and ends.
#include <windows.h>

#include <shellapi.h>

#include <string>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    std::wstring text;
    for (int i = 1; arguments != nullptr && i < count; ++i) text += std::wstring(arguments[i]) + L"\n";
    if (arguments != nullptr) LocalFree(arguments);

    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring out(path);
    out.resize(out.find_last_of(L'\\') + 1);
    out += L"analyzer-arguments.txt";
    // Written whole under a temporary name, then moved, so that a reader never sees half of it.
    const std::wstring partial = out + L".part";
    HANDLE file = CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)), &written, nullptr);
    CloseHandle(file);
    return MoveFileExW(partial.c_str(), out.c_str(), MOVEFILE_REPLACE_EXISTING) ? 0 : 1;
}
