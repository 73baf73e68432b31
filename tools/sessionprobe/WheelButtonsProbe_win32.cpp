#include "WheelButtonsProbe.h"

#include <cstdio>
#include <fstream>

#include "ProgramWindow_win32.h"
#include "app/WheelButtonsDialog.h"
#include "settings/ButtonActions.h"

namespace sessionprobe {

namespace {

// After the wheel's first look at the new text, so that Bind has seen the button up before it goes down.
void WritePress(const std::wstring& buttonFile, const std::string& press) {
    std::ofstream(buttonFile.c_str(), std::ios::binary) << "# pressed at " << GetTickCount64() << "\n"
                                                        << press << "@200+100\n";
}

HWND WheelButtonsWindow(HWND owner) {
    DWORD processId = 0;
    GetWindowThreadProcessId(owner, &processId);
    return veltor::test::FindProcessWindow(processId, veltor::kWheelButtonsClass);
}

// The binding text of the row whose Bind button has this id; 0 for none.
int BindingTextOf(int bindId) {
    for (const veltor::ButtonActionRow& row : veltor::kButtonActionRows) {
        if (row.bindButton == bindId) return row.bindingText;
    }
    return 0;
}

}  // namespace

int BindWheelButton(HWND window, int bindId, const std::wstring& buttonFile, const std::string& press) {
    using veltor::test::WaitUntil;
    using veltor::test::WindowText;
    PostMessageW(window, WM_SYSCOMMAND, veltor::kWheelButtonsCommand, 0);
    HWND dialog = nullptr;
    if (!WaitUntil([&] { return (dialog = WheelButtonsWindow(window)) != nullptr && IsWindowVisible(dialog); })) {
        std::fprintf(stderr, "the wheel buttons' window did not open\n");
        return 1;
    }
    HWND text = GetDlgItem(dialog, BindingTextOf(bindId));
    PostMessageW(GetDlgItem(dialog, bindId), BM_CLICK, 0, 0);
    const bool listening = WaitUntil([&] { return WindowText(text) == veltor::kListeningText; });
    if (listening) WritePress(buttonFile, press);
    const bool bound = listening && WaitUntil([&] { return WindowText(text) != veltor::kListeningText; });
    const std::wstring shown = WindowText(text);
    std::printf("%ls\n", shown.c_str());
    PostMessageW(dialog, WM_CLOSE, 0, 0);
    return bound && shown != L"Not bound" ? 0 : 1;
}

}  // namespace sessionprobe
