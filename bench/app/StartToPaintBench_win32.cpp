// Time from the program's process start to its first fully painted window: one start to warm the prefix,
// then --runs starts (5 by default), each closed before the next. Prints every start and the median.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "ProgramWindow_win32.h"

namespace {

// Milliseconds from CreateProcess to the painted window, or a negative number if it never came.
double StartToPaint(const std::wstring& exe) {
    LARGE_INTEGER frequency, start, painted;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    veltor::test::Process program(exe, L"");
    HWND window = program.started ? veltor::test::WaitForPaintedWindow(L"VeltorCommercialWindow",
                                                                        program.info.dwProcessId, L"", 2)
                                  : nullptr;
    QueryPerformanceCounter(&painted);
    if (window == nullptr) return -1.0;
    PostMessageW(window, WM_CLOSE, 0, 0);
    program.WaitForExit();
    return 1000.0 * static_cast<double>(painted.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

int main(int argc, char** argv) {
    int runs = 5;
    if (argc == 3 && std::strcmp(argv[1], "--runs") == 0) runs = std::max(1, std::atoi(argv[2]));
    veltor::test::ProgramFolder folder(VELTOR_GRIPLINE_EXE);
    if (!folder.copied) {
        std::fprintf(stderr, "cannot copy %s\n", VELTOR_GRIPLINE_EXE);
        return 1;
    }
    std::printf("warm-up start: %.0f ms\n", StartToPaint(folder.Exe));
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double ms = StartToPaint(folder.Exe);
        if (ms < 0) {
            std::fprintf(stderr, "start %d: no painted window\n", i + 1);
            return 1;
        }
        std::printf("start %d: %.0f ms\n", i + 1, ms);
        times.push_back(ms);
    }
    std::sort(times.begin(), times.end());
    std::printf("start to first paint, median of %d: %.0f ms (min %.0f, max %.0f)\n", runs, times[times.size() / 2],
                times.front(), times.back());
    return 0;
}
