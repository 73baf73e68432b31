#pragma once
// Gripline.exe as a user meets it: started from a folder of its own (the program writes its INI file
// beside itself), its window found, waited for until painted, and closed.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <string>
#include <system_error>

namespace veltor::test {

constexpr DWORD kWindowTimeoutMs = 60000;  // a cold Wine prefix starts slowly

// The build tree's paths are Unix paths when the tests run under Wine: its drive Z: is the root.
inline std::wstring WindowsPath(const char* unixPath) {
    std::wstring path(unixPath, unixPath + std::strlen(unixPath));
    if (path.empty() || path[0] != L'/') return path;
    for (wchar_t& c : path) c = c == L'/' ? L'\\' : c;
    return L"Z:" + path;
}

// A fresh folder holding a copy of the program; removed with everything in it.
class ProgramFolder {
public:
    explicit ProgramFolder(const char* programPath) {
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        static int serial = 0;
        wchar_t name[64];
        std::swprintf(name, 64, L"gripline_test_%lu_%d", GetCurrentProcessId(), ++serial);
        Path = std::wstring(temp) + name;
        CreateDirectoryW(Path.c_str(), nullptr);
        Exe = Path + L"\\Gripline.exe";
        copied = CopyFileW(WindowsPath(programPath).c_str(), Exe.c_str(), FALSE) != 0;
    }
    ~ProgramFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    bool Holds(const wchar_t* file) const {
        return GetFileAttributesW((Path + L"\\" + file).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    std::wstring Path;
    std::wstring Exe;
    bool copied = false;
};

// One started process; ended by force if it still runs when this goes.
class Process {
public:
    Process(const std::wstring& exe, const std::wstring& arguments) {
        std::wstring line = L"\"" + exe + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                                 &info) != 0;
    }
    ~Process() {
        if (!started) return;
        if (WaitForSingleObject(info.hProcess, 0) == WAIT_TIMEOUT) {
            TerminateProcess(info.hProcess, 99);
            WaitForSingleObject(info.hProcess, kWindowTimeoutMs);
        }
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // The exit code once the process has ended within the time, or -1.
    long WaitForExit(DWORD timeoutMs = kWindowTimeoutMs) const {
        DWORD code = 0;
        if (!started || WaitForSingleObject(info.hProcess, timeoutMs) != WAIT_OBJECT_0) return -1;
        return GetExitCodeProcess(info.hProcess, &code) ? static_cast<long>(code) : -1;
    }

    bool started = false;
    PROCESS_INFORMATION info{};
};

// The process's top-level window of this class, or null.
inline HWND FindProcessWindow(DWORD processId, const wchar_t* className) {
    for (HWND window = FindWindowExW(nullptr, nullptr, className, nullptr); window != nullptr;
         window = FindWindowExW(nullptr, window, className, nullptr)) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner == processId) return window;
    }
    return nullptr;
}

// Shown, and neither the window nor any of its children waits for a paint.
inline bool IsPainted(HWND window) {
    if (!IsWindowVisible(window) || GetUpdateRect(window, nullptr, FALSE)) return false;
    bool pending = false;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM context) -> BOOL {
            if (!GetUpdateRect(child, nullptr, FALSE)) return TRUE;
            *reinterpret_cast<bool*>(context) = true;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&pending));
    return !pending;
}

// The main window of the process once it is painted; null if that did not happen in time.
inline HWND WaitForPaintedWindow(const Process& process, DWORD timeoutMs = kWindowTimeoutMs, DWORD pollMs = 20) {
    const ULONGLONG until = GetTickCount64() + timeoutMs;
    do {
        HWND window = FindProcessWindow(process.info.dwProcessId, L"VeltorCommercialWindow");
        if (window != nullptr && IsPainted(window)) return window;
        if (WaitForSingleObject(process.info.hProcess, pollMs) == WAIT_OBJECT_0) return nullptr;
    } while (GetTickCount64() < until);
    return nullptr;
}

inline std::wstring WindowText(HWND window) {
    wchar_t text[4096] = {};
    SendMessageW(window, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(text));
    return text;
}

}  // namespace veltor::test
