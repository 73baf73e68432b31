// Waits until the program's main window is on screen and painted, then prints its outer rectangle as
// "x y width height" in screen pixels. scripts/run takes its screenshot after this.
#include <windows.h>

#include <cstdio>

#include "ProgramWindow_win32.h"

int main() {
    const ULONGLONG until = GetTickCount64() + veltor::test::kWindowTimeoutMs;
    do {
        HWND window = FindWindowW(L"VeltorCommercialWindow", nullptr);
        if (window != nullptr && veltor::test::IsPainted(window)) {
            RECT rect;
            GetWindowRect(window, &rect);
            std::printf("%ld %ld %ld %ld\n", rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
            return 0;
        }
        Sleep(50);
    } while (GetTickCount64() < until);
    std::fprintf(stderr, "no painted Gripline window\n");
    return 1;
}
