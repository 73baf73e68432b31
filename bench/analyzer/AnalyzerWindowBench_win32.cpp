// The analyzer's window over an hour of driving (216,000 generated records), under Wine on a display: the
// time to open, analyse and draw it, the time of a redraw alone, and the process's peak memory.
// Usage: scripts/wine-gui.sh build/win64/bench/analyzer/bench_analyzer_window.exe [--runs N]
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "HourRecording.h"
#include "analyzer/AnalyzerWindow.h"

namespace {

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

void Print(const char* what, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::printf("  %-36s best %8.1f ms   median %8.1f ms\n", what, values.front(), values[values.size() / 2]);
}

double WorkingSetMegabytes(bool peak) {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return -1.0;
    return static_cast<double>(peak ? counters.PeakWorkingSetSize : counters.WorkingSetSize) / (1024.0 * 1024.0);
}

// Lets the window take what the system has queued for it (the first paint, activation) before timing.
void Settle() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

}  // namespace

int main(int argc, char** argv) {
    int runs = 5;
    if (argc == 3 && std::strcmp(argv[1], "--runs") == 0) runs = std::max(1, std::atoi(argv[2]));
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "veltor_analyzer_window_bench";
    std::filesystem::create_directories(folder);
    const std::filesystem::path file = veltor::bench::WriteHourRecording(folder);
    std::printf("Recording of one hour: %lld records, %.1f MB\n", static_cast<long long>(veltor::bench::kHourRecords),
                static_cast<double>(std::filesystem::file_size(file)) / 1e6);

    const double before = WorkingSetMegabytes(false);
    veltor::analyzer::AnalyzerWindow window;
    const Clock::time_point created = Clock::now();
    const auto defaults = [](std::wstring_view) { return veltor::analyzer::OfflineSettings{}; };
    if (!window.Create(GetModuleHandleW(nullptr), SW_SHOWNOACTIVATE, defaults)) {
        std::fprintf(stderr, "bench_analyzer_window: no window (is there a display?)\n");
        return 1;
    }
    Settle();
    std::printf("  %-36s %8.1f ms\n", "empty window created and drawn", Milliseconds(Clock::now() - created));

    std::vector<double> open, redraw;
    for (int run = 0; run < runs; ++run) {
        const Clock::time_point start = Clock::now();
        window.Open(file.wstring());
        UpdateWindow(window.Window);
        open.push_back(Milliseconds(Clock::now() - start));
        Settle();
        const Clock::time_point again = Clock::now();
        InvalidateRect(window.Window, nullptr, FALSE);
        UpdateWindow(window.Window);
        redraw.push_back(Milliseconds(Clock::now() - again));
    }
    Print("open, analyse and draw the hour", open);
    Print("redraw of the whole window", redraw);
    std::printf("  %-36s %8.1f MB (before the window: %.1f MB; the process, program and all)\n", "peak working set",
                WorkingSetMegabytes(true), before);
    DestroyWindow(window.Window);
    std::filesystem::remove_all(folder);
    return 0;
}
