#include "WheelButtonsProbe.h"

#include <cstdio>
#include <fstream>

#include "ProgramWindow_win32.h"

namespace sessionprobe {

namespace {

constexpr UINT kWheelButtonsCommand = 0x0110;  // the system menu's "Wheel buttons..."
constexpr int kBindingTextOffset = 1;          // a row's binding text has the id before its Bind button
constexpr wchar_t kListening[] = L"Press a button on any game controller...";

// After the wheel's first look at the new text, so that Bind has seen the button up before it goes down.
void WritePress(const std::wstring& buttonFile, const std::string& press) {
    std::ofstream(buttonFile.c_str(), std::ios::binary) << "# pressed at " << GetTickCount64() << "\n"
                                                        << press << "@200+100\n";
}

HWND WheelButtonsWindow(HWND owner) {
    DWORD processId = 0;
    GetWindowThreadProcessId(owner, &processId);
    return veltor::test::FindProcessWindow(processId, L"VeltorWheelButtons");
}

}  // namespace

int BindWheelButton(HWND window, int bindId, const std::wstring& buttonFile, const std::string& press) {
    using veltor::test::WaitUntil;
    using veltor::test::WindowText;
    PostMessageW(window, WM_SYSCOMMAND, kWheelButtonsCommand, 0);
    HWND dialog = nullptr;
    if (!WaitUntil([&] { return (dialog = WheelButtonsWindow(window)) != nullptr && IsWindowVisible(dialog); })) {
        std::fprintf(stderr, "the wheel buttons' window did not open\n");
        return 1;
    }
    HWND text = GetDlgItem(dialog, bindId - kBindingTextOffset);
    PostMessageW(GetDlgItem(dialog, bindId), BM_CLICK, 0, 0);
    const bool listening = WaitUntil([&] { return WindowText(text) == kListening; });
    if (listening) WritePress(buttonFile, press);
    const bool bound = listening && WaitUntil([&] { return WindowText(text) != kListening; });
    const std::wstring shown = WindowText(text);
    std::printf("%ls\n", shown.c_str());
    PostMessageW(dialog, WM_CLOSE, 0, 0);
    return bound && shown != L"Not bound" ? 0 : 1;
}

}  // namespace sessionprobe
