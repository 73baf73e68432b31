#pragma once
// Gripline.exe as a user meets it: started from a folder of its own (the program writes its INI file
// beside itself), its window found, waited for until painted, and closed.
#include <windows.h>

#include <cwchar>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "ChildProcess_win32.h"

namespace veltor::test {

// A fresh folder holding a copy of the program; removed with everything in it.
class ProgramFolder {
public:
    explicit ProgramFolder(const char* programPath) {
        static int serial = 0;
        wchar_t name[64];
        std::swprintf(name, 64, L"gripline_test_%lu_%d", GetCurrentProcessId(), ++serial);
        Path = TempPath(name);
        CreateDirectoryW(Path.c_str(), nullptr);
        Exe = Path + L"\\Gripline.exe";
        copied = CopyFileW(ProgramPath(programPath).c_str(), Exe.c_str(), FALSE) != 0;
    }
    ~ProgramFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    std::wstring Path;
    std::wstring Exe;
    bool copied = false;
};

inline std::wstring WindowText(HWND window) {
    wchar_t text[4096] = {};
    SendMessageW(window, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(text));
    return text;
}

inline std::wstring ClassName(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

// Every child of the window at any depth, in the order the system lists them.
inline std::vector<HWND> Descendants(HWND window) {
    std::vector<HWND> found;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

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
    for (HWND child : Descendants(window)) {
        if (GetUpdateRect(child, nullptr, FALSE)) return false;
    }
    return true;
}

// The painted top-level window of this class whose title holds `titlePart`, of the process `processId`
// unless that is 0; null if none came in time.
inline HWND WaitForPaintedWindow(const wchar_t* className, DWORD processId = 0, const std::wstring& titlePart = L"",
                                 DWORD pollMs = 20) {
    HWND window = nullptr;
    const bool painted = WaitUntil([&] {
        window = processId != 0 ? FindProcessWindow(processId, className) : FindWindowW(className, nullptr);
        return window != nullptr && IsPainted(window) && WindowText(window).find(titlePart) != std::wstring::npos;
    }, kWindowTimeoutMs, pollMs);
    return painted ? window : nullptr;
}

inline bool WaitGone(HWND window) {
    return WaitUntil([&] { return !IsWindow(window); });
}

}  // namespace veltor::test
