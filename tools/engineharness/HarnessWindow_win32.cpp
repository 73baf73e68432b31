#include <windows.h>

#include "HarnessWindow.h"

namespace veltor::harness {
namespace {
constexpr wchar_t kWindowClass[] = L"VeltorEngineHarness";
}

WindowHandle CreateHarnessWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);
    // Top-level but never shown: DirectInput wants a top-level window, the test wants no visible one.
    return CreateWindowExW(0, kWindowClass, L"Gripline engine harness", WS_OVERLAPPEDWINDOW, 0, 0, 320, 200,
                           nullptr, nullptr, windowClass.hInstance, nullptr);
}

void DestroyHarnessWindow(WindowHandle window) {
    if (window != nullptr) DestroyWindow(static_cast<HWND>(window));
}

void PumpMessages(int32_t milliseconds) {
    const ULONGLONG until = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (ULONGLONG now = GetTickCount64(); now < until; now = GetTickCount64()) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(until - now), QS_ALLINPUT);
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
    }
}

}  // namespace veltor::harness
