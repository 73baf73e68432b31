#pragma once
// The common save dialog of another process, answered as a user answers it: a path typed into its file
// name box, then Save.
#include <windows.h>

#include <string>

#include "ProgramWindow_win32.h"

namespace veltor::test {

// Types `path` (an empty one cancels) and waits for the dialog to go. The name the dialog proposed comes
// back in `proposed`.
inline bool AnswerFileDialog(DWORD processId, const std::wstring& path, std::wstring* proposed = nullptr) {
    HWND dialog = nullptr, box = nullptr;
    if (!WaitUntil([&] {
            dialog = FindProcessWindow(processId, L"#32770");
            if (dialog == nullptr || !IsWindowVisible(dialog)) return false;
            for (HWND child : Descendants(dialog)) {  // the file name box: an edit inside the combo box 1148
                if (GetDlgCtrlID(child) == 1148 && ClassName(child) == L"Edit") box = child;
            }
            return box != nullptr;
        })) {
        return false;
    }
    if (proposed != nullptr) *proposed = WindowText(box);
    if (!path.empty()) SendMessageW(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(GetDlgItem(dialog, path.empty() ? IDCANCEL : IDOK), BM_CLICK, 0, 0);
    return WaitGone(dialog);
}

}  // namespace veltor::test
