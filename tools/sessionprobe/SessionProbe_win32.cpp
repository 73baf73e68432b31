// What scripts/run and scripts/soak do to the running program and its analyzer, one command per start:
//   painted                 waits for the painted main window and prints its rectangle "x y width height"
//   press ID [--time]       clicks the control with this id with the real mouse, as a user would; with
//                           --time prints when, in milliseconds since 1970
//   record FILE [--time]    presses Record and answers the save dialog with FILE (a Windows path); with
//                           --time prints when the dialog went, in milliseconds since 1970
//   slide ID FRACTION       clicks the slider with this id at that fraction of its track (the button's down and
//                           up sent to it); prints the value it shows then
//   value ID                prints the value that the slider with this id shows
//   car                     prints the car path that the car panel's label names
//   wait-log TEXT [SECONDS [FROM]]
//                           waits until the session log holds TEXT (default 60 s), from its line FROM on;
//                           "A|B" waits for either
//   log [FROM]              prints the session log panel, or the log from its line FROM on (an error when the
//                           panel no longer keeps them all)
//   log-length              prints the number of lines the session log has said, the ones the panel dropped
//                           included: a mark for wait-log and log
//   log-window              opens the log window with "View log", sees it painted with the whole log, closes it
//   close                   closes the window as its close box does
//   analyzer                waits for the analyzer's window with a recording open; prints its rectangle
//   analyzer-apply          presses "Apply to Gripline"; exit code 3 when the analyzer proposes nothing
//   analyzer-close          closes the analyzer's window
//   wheel-summary FILE      what the virtual wheel's call log says the wheel was sent
//   bind ID FILE PRESS      binds a wheel button through "Wheel buttons..." (WheelButtonsProbe.h)
//   wait-wheel WHEEL_LOG FROM [COUNT [SECONDS]]
//                           waits until the wheel's call log holds COUNT (default 100) successful updates
//                           with a force after its byte offset FROM (default 60 s)
//   flow WHEEL_LOG FROM EVENT_LOG FROM
//                           how the force flowed since those byte offsets of the wheel's call log and the
//                           simulator's event log: "updates U active S per-second R latency N P50 P99 MAX
//                           next WHEEL_END EVENT_END" (latencies in microseconds, -1 without any)
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "ForceFlow.h"
#include "ProgramWindow_win32.h"
#include "SaveDialog_win32.h"
#include "WheelButtonsProbe.h"
#include "analyzer/AnalyzerLayout.h"
#include "app/SessionLog.h"
#include "ui/SliderGeometry.h"

namespace {

// The painted window of this class whose title holds `titlePart`.
HWND PaintedWindow(const wchar_t* className, const wchar_t* titlePart, const char* what) {
    HWND window = veltor::test::WaitForPaintedWindow(className, 0, titlePart);
    if (window == nullptr) std::fprintf(stderr, "no painted %s window\n", what);
    return window;
}

int PrintRectangle(HWND window) {
    RECT rect;
    GetWindowRect(window, &rect);
    std::printf("%ld %ld %ld %ld\n", rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
    return 0;
}

std::string Utf8(const std::wstring& text) {
    std::string out(text.size() * 3, '\0');
    const int n = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(),
                                      static_cast<int>(out.size()), nullptr, nullptr);
    out.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return out;
}

std::wstring Wide(const char* text) {
    std::wstring out(std::strlen(text) + 1, L'\0');
    out.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text, -1, out.data(), static_cast<int>(out.size()))));
    return out.empty() ? out : out.substr(0, out.size() - 1);
}

constexpr DWORD kLogPollMs = 100;  // the whole log crosses over each time: no faster than this

std::wstring WholeText(HWND window) {
    std::wstring text(static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    text.resize(static_cast<size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::wstring LogText(HWND window) {
    return WholeText(GetWindow(GetWindow(window, GW_CHILD), GW_HWNDLAST));  // the session log panel
}

void MouseButton(DWORD flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

long long UnixMilliseconds() {
    constexpr long long kUnixEpochIn100ns = 116444736000000000LL;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const long long ticks = static_cast<long long>((static_cast<unsigned long long>(now.dwHighDateTime) << 32) | now.dwLowDateTime);
    return (ticks - kUnixEpochIn100ns) / 10000;
}

int Press(HWND window, int id) {
    HWND control = GetDlgItem(window, id);
    if (control == nullptr) {
        std::fprintf(stderr, "no control %d in the window %p \"%s\"\n", id, static_cast<void*>(window),
                     Utf8(WholeText(window)).c_str());
        return 1;
    }
    RECT rect;
    GetWindowRect(control, &rect);
    SetForegroundWindow(window);
    SetCursorPos((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    MouseButton(MOUSEEVENTF_LEFTDOWN);
    MouseButton(MOUSEEVENTF_LEFTUP);
    return 0;
}

int Record(HWND window, const std::wstring& file, bool printTime) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (Press(window, 1124) != 0 || !veltor::test::AnswerFileDialog(processId, file)) {
        std::fprintf(stderr, "the save dialog for the recording did not come or go\n");
        return 1;
    }
    if (printTime) std::printf("%lld\n", UnixMilliseconds());
    return 0;
}

bool HoldsAny(const std::wstring& log, const std::wstring& texts, size_t from) {
    for (size_t start = 0;;) {
        const size_t bar = texts.find(L'|', start);
        if (log.find(texts.substr(start, bar - start), from) != std::wstring::npos) return true;
        if (bar == std::wstring::npos) return false;
        start = bar + 1;
    }
}

int WaitForLog(HWND window, const std::wstring& text, double seconds, uint64_t fromLine) {
    const ULONGLONG until = GetTickCount64() + static_cast<ULONGLONG>(seconds * 1000.0);
    for (;;) {
        const std::wstring log = LogText(window);
        if (HoldsAny(log, text, veltor::LineOffset(log, fromLine))) return 0;
        if (GetTickCount64() > until || !IsWindow(window)) {
            std::fprintf(stderr, "the session log never said \"%s\"\n", Utf8(text).c_str());
            return 1;
        }
        Sleep(kLogPollMs);
    }
}

// The log from its line `fromLine` on, or the whole panel (its notice included) without one. Lines since
// `fromLine` that the panel no longer keeps are an error: whoever reads the log piecewise would miss them.
int PrintLog(HWND window, std::optional<uint64_t> fromLine) {
    const std::wstring log = LogText(window);
    if (!fromLine) {
        std::fputs(Utf8(log).c_str(), stdout);
        return 0;
    }
    const uint64_t dropped = veltor::DroppedLines(log);
    if (*fromLine < dropped) {
        std::fprintf(stderr, "the session log no longer keeps its lines from %llu on (%llu dropped)\n",
                     static_cast<unsigned long long>(*fromLine), static_cast<unsigned long long>(dropped));
        return 1;
    }
    std::fputs(Utf8(log.substr(veltor::LineOffset(log, *fromLine))).c_str(), stdout);
    return 0;
}

// A click on the track where the fraction lies, sent to the slider itself so that the value has been taken
// when the call returns.
int Slide(HWND window, int id, double fraction) {
    HWND slider = GetDlgItem(window, id);
    HWND valueText = GetWindow(slider, GW_HWNDPREV);
    if (slider == nullptr || valueText == nullptr || fraction < 0.0 || fraction > 1.0) {
        std::fprintf(stderr, "no slider %d with its value text, or a fraction outside 0 to 1\n", id);
        return 2;
    }
    RECT client;
    GetClientRect(slider, &client);
    const double track = static_cast<double>(client.right - 2 * veltor::kSliderTrackInset);
    const LPARAM point = MAKELPARAM(veltor::kSliderTrackInset + static_cast<int>(fraction * track), client.bottom / 2);
    SendMessageW(slider, WM_LBUTTONDOWN, MK_LBUTTON, point);
    SendMessageW(slider, WM_LBUTTONUP, 0, point);
    std::printf("%s\n", Utf8(WholeText(valueText)).c_str());
    return 0;
}

// "Car: <path>", with " (unknown)" for a car that neither the catalogue nor an override knows; the label
// stands three places before the panel's first slider.
int PrintCar(HWND window) {
    HWND label = GetDlgItem(window, 1116);
    for (int i = 0; i < 3 && label != nullptr; ++i) label = GetWindow(label, GW_HWNDPREV);
    std::wstring text = label != nullptr ? WholeText(label) : L"";
    const std::wstring prefix = L"Car: ", unknown = L" (unknown)";
    if (text.rfind(prefix, 0) != 0) return 1;
    text = text.substr(prefix.size());
    if (text.size() > unknown.size() && text.compare(text.size() - unknown.size(), unknown.size(), unknown) == 0) {
        text.resize(text.size() - unknown.size());
    }
    std::printf("%s\n", Utf8(text).c_str());
    return 0;
}

int PrintValue(HWND window, int id) {
    HWND valueText = GetWindow(GetDlgItem(window, id), GW_HWNDPREV);
    if (valueText == nullptr) return 2;
    std::printf("%s\n", Utf8(WholeText(valueText)).c_str());
    return 0;
}

// The log window starts with a copy of the whole panel and takes each new line as the panel does.
int OpenAndCloseLogWindow(HWND window) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    const std::wstring before = LogText(window);
    if (Press(window, 1123) != 0) return 1;
    // A top-level edit control: WM_GETTEXT gives its content, GetWindowTextW (another process's window) its caption.
    HWND logWindow = nullptr;
    const bool shown = veltor::test::WaitUntil([&] {
        logWindow = veltor::test::FindProcessWindow(processId, L"Edit");
        wchar_t caption[64] = {};
        if (logWindow != nullptr) GetWindowTextW(logWindow, caption, 64);
        return logWindow != nullptr && std::wcscmp(caption, L"Veltor Session Log") == 0 && veltor::test::IsPainted(logWindow);
    });
    if (!shown) {
        std::fprintf(stderr, "the log window did not open\n");
        return 1;
    }
    const std::wstring copy = WholeText(logWindow);
    PostMessageW(logWindow, WM_CLOSE, 0, 0);
    if (!veltor::test::WaitGone(logWindow)) {
        std::fprintf(stderr, "the log window did not close\n");
        return 1;
    }
    if (copy.compare(0, before.size(), before) != 0) {
        std::fprintf(stderr, "the log window did not hold the session log (%zu characters, the panel %zu)\n",
                     copy.size(), before.size());
        return 1;
    }
    return 0;
}

// The bytes of a file from `from` on; empty when there are none.
std::string ReadFrom(const char* path, long long from) {
    std::ifstream file(path, std::ios::binary);
    if (!file || !file.seekg(from)) return {};
    return std::string(std::istreambuf_iterator<char>(file), {});
}

int WaitForWheel(const char* wheelLog, long long from, long long count, double seconds) {
    const ULONGLONG until = GetTickCount64() + static_cast<ULONGLONG>(seconds * 1000.0);
    for (;;) {
        veltor::probe::FlowLogs logs;
        veltor::probe::ReadWheelLines(ReadFrom(wheelLog, from), logs);
        const long long forces = std::count_if(logs.updates.begin(), logs.updates.end(),
                                               [](const veltor::probe::ForceUpdate& u) { return u.magnitude != 0; });
        if (forces >= count) return 0;
        if (GetTickCount64() > until) {
            std::fprintf(stderr, "the wheel took %lld of %lld updates with a force\n", forces, count);
            return 1;
        }
        Sleep(kLogPollMs);
    }
}

int Flow(const char* wheelLog, long long wheelFrom, const char* eventLog, long long eventFrom) {
    veltor::probe::FlowLogs logs;
    const long long wheelEnd = wheelFrom + static_cast<long long>(veltor::probe::ReadWheelLines(ReadFrom(wheelLog, wheelFrom), logs));
    const long long eventEnd = eventFrom + static_cast<long long>(veltor::probe::ReadEventLines(ReadFrom(eventLog, eventFrom), logs));
    const veltor::probe::FlowFigures f = veltor::probe::MeasureFlow(logs);
    std::printf("updates %lld active %lld per-second %.0f latency %lld %lld %lld %lld next %lld %lld\n",
                static_cast<long long>(f.updates), static_cast<long long>(f.activeSeconds), f.updatesPerSecond,
                static_cast<long long>(f.latencySamples), static_cast<long long>(f.latencyP50),
                static_cast<long long>(f.latencyP99), static_cast<long long>(f.latencyMax), wheelEnd, eventEnd);
    return 0;
}

// "<microseconds> SetParameters ... magnitude=N ..." lines: how many, how long, how strong.
int WheelSummary(const char* path) {
    std::ifstream file(path);
    long long first = -1, last = -1, updates = 0, nonZero = 0, failures = 0;
    long peak = 0;
    double sumOfSquares = 0.0;
    for (std::string line; std::getline(file, line);) {
        if (line.find(" SetParameters ") == std::string::npos) continue;
        const long long time = std::atoll(line.c_str());
        if (first < 0) first = time;
        last = time;
        ++updates;
        if (line.find("hr=0x00000000") == std::string::npos && line.find("hr=") != std::string::npos) ++failures;
        const size_t at = line.find("magnitude=");
        const long magnitude = at == std::string::npos ? 0 : std::labs(std::atol(line.c_str() + at + 10));
        if (magnitude != 0) ++nonZero;
        if (magnitude > peak) peak = magnitude;
        sumOfSquares += static_cast<double>(magnitude) * magnitude;
    }
    if (updates == 0) {
        std::printf("The virtual wheel was sent no force.\n");
        return 0;
    }
    const double seconds = static_cast<double>(last - first) / 1e6;
    std::printf("Virtual wheel: %lld force updates over %.1f s (%.0f a second), %lld non-zero, %lld failed;\n"
                "peak magnitude %ld of 10000, RMS %.0f.\n",
                updates, seconds, seconds > 0.0 ? updates / seconds : 0.0, nonZero, failures, peak,
                std::sqrt(sumOfSquares / static_cast<double>(updates)));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "wheel-summary" && argc > 2) return WheelSummary(argv[2]);
    if (command == "wait-wheel" && argc > 3) {
        return WaitForWheel(argv[2], std::atoll(argv[3]), argc > 4 ? std::atoll(argv[4]) : 100,
                            argc > 5 ? std::atof(argv[5]) : 60.0);
    }
    if (command == "flow" && argc > 5) return Flow(argv[2], std::atoll(argv[3]), argv[4], std::atoll(argv[5]));
    if (command.rfind("analyzer", 0) == 0) {
        // The analyzer's title names the file it shows.
        HWND analyzer = PaintedWindow(veltor::analyzer::kAnalyzerWindowClass, L" - ", "analyzer");
        if (analyzer == nullptr) return 1;
        if (command == "analyzer") return PrintRectangle(analyzer);
        if (command == "analyzer-close") return PostMessageW(analyzer, WM_CLOSE, 0, 0) ? 0 : 1;
        if (command == "analyzer-apply") {
            if (IsWindowEnabled(GetDlgItem(analyzer, veltor::analyzer::kApplyButtonId))) return Press(analyzer, veltor::analyzer::kApplyButtonId);
            std::printf("The analyzer proposes no change for this drive.\n");
            return 3;
        }
    }
    HWND window = PaintedWindow(L"VeltorCommercialWindow", L"Gripline", "Gripline");
    if (window == nullptr) return 1;
    if (command == "painted") return PrintRectangle(window);
    const bool printTime = std::strcmp(argv[argc - 1], "--time") == 0;
    if (command == "press" && argc > 2) {
        if (Press(window, std::atoi(argv[2])) != 0) return 1;
        if (printTime) std::printf("%lld\n", UnixMilliseconds());
        return 0;
    }
    if (command == "record" && argc > 2) return Record(window, Wide(argv[2]), printTime);
    if (command == "slide" && argc > 3) return Slide(window, std::atoi(argv[2]), std::atof(argv[3]));
    if (command == "value" && argc > 2) return PrintValue(window, std::atoi(argv[2]));
    if (command == "car") return PrintCar(window);
    if (command == "bind" && argc > 4) return sessionprobe::BindWheelButton(window, std::atoi(argv[2]), Wide(argv[3]), argv[4]);
    if (command == "wait-log" && argc > 2) {
        return WaitForLog(window, Wide(argv[2]), argc > 3 ? std::atof(argv[3]) : 60.0,
                          argc > 4 ? std::strtoull(argv[4], nullptr, 10) : 0);
    }
    if (command == "log") return PrintLog(window, argc > 2 ? std::optional(std::strtoull(argv[2], nullptr, 10)) : std::nullopt);
    if (command == "log-length") {
        std::printf("%llu\n", static_cast<unsigned long long>(veltor::LogLineCount(LogText(window))));
        return 0;
    }
    if (command == "log-window") return OpenAndCloseLogWindow(window);
    if (command == "close") {
        PostMessageW(window, WM_CLOSE, 0, 0);
        return 0;
    }
    std::fprintf(stderr, "usage: session_probe painted | press ID [--time] | slide ID FRACTION | value ID | car | record FILE [--time] |"
                         " wait-log TEXT [SECONDS [FROM]] | log [FROM] | log-length | log-window | close | analyzer |"
                         " analyzer-apply | analyzer-close | wheel-summary FILE | bind ID FILE PRESS |"
                         " wait-wheel WHEEL_LOG FROM [COUNT [SECONDS]] | flow WHEEL_LOG FROM EVENT_LOG FROM\n");
    return 2;
}
