#pragma once
// The common save dialog of another process, answered as a user answers it: a path typed into its file
// name box, then Save.
#include <windows.h>

#include <string>

#include "ProgramWindow_win32.h"

namespace veltor::test {

// The file name box of a file dialog: an edit inside the combo box 1148.
inline HWND FileNameEdit(HWND dialog) {
    HWND found = nullptr;
    EnumChildWindows(
        dialog,
        [](HWND child, LPARAM context) -> BOOL {
            wchar_t name[16] = {};
            GetClassNameW(child, name, 16);
            if (GetDlgCtrlID(child) != 1148 || std::wstring(name) != L"Edit") return TRUE;
            *reinterpret_cast<HWND*>(context) = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Waits for the process's file dialog; its name box, or null when none came in time.
inline HWND WaitForFileDialog(DWORD processId, HWND& dialog, DWORD timeoutMs = kWindowTimeoutMs) {
    const ULONGLONG until = GetTickCount64() + timeoutMs;
    do {
        dialog = FindProcessWindow(processId, L"#32770");
        HWND box = dialog != nullptr && IsWindowVisible(dialog) ? FileNameEdit(dialog) : nullptr;
        if (box != nullptr) return box;
        Sleep(20);
    } while (GetTickCount64() < until);
    return nullptr;
}

// Types `path` (an empty one cancels) and waits for the dialog to go. The name the dialog proposed comes
// back in `proposed`.
inline bool AnswerFileDialog(DWORD processId, const std::wstring& path, std::wstring* proposed = nullptr) {
    HWND dialog = nullptr;
    HWND box = WaitForFileDialog(processId, dialog);
    if (box == nullptr) return false;
    if (proposed != nullptr) *proposed = WindowText(box);
    if (path.empty()) {
        PostMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
    } else {
        SendMessageW(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
        PostMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    }
    const ULONGLONG until = GetTickCount64() + kWindowTimeoutMs;
    while (IsWindow(dialog)) {
        if (GetTickCount64() > until) return false;
        Sleep(20);
    }
    return true;
}

}  // namespace veltor::test
