// What scripts/run does to the running program and its analyzer, one command per start:
//   painted                 waits for the painted main window and prints its rectangle "x y width height"
//   press ID                clicks the control with this id with the real mouse, as a user would
//   record FILE             presses Record and answers the save dialog with FILE (a Windows path)
//   wait-log TEXT [SECONDS] waits until the session log holds TEXT (default 60 s)
//   log                     prints the session log
//   close                   closes the window as its close box does
//   analyzer                waits for the analyzer's window with a recording open; prints its rectangle
//   analyzer-apply          presses "Apply to Gripline"; exit code 3 when the analyzer proposes nothing
//   analyzer-close          closes the analyzer's window
//   wheel-summary FILE      what the virtual wheel's call log says the wheel was sent
//   bind ID FILE PRESS      binds a wheel button through "Wheel buttons..." (WheelButtonsProbe.h)
//   value ID                prints the value text of the slider with this id
#include <windows.h>

#include <cstdio>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "ProgramWindow_win32.h"
#include "SaveDialog_win32.h"
#include "WheelButtonsProbe.h"
#include "analyzer/AnalyzerLayout.h"

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

std::wstring LogText(HWND window) {
    HWND log = GetWindow(GetWindow(window, GW_CHILD), GW_HWNDLAST);  // the session log
    std::wstring text(static_cast<size_t>(SendMessageW(log, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    text.resize(static_cast<size_t>(SendMessageW(log, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

void MouseButton(DWORD flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

int Press(HWND window, int id) {
    HWND control = GetDlgItem(window, id);
    if (control == nullptr) return 1;
    RECT rect;
    GetWindowRect(control, &rect);
    SetForegroundWindow(window);
    SetCursorPos((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    MouseButton(MOUSEEVENTF_LEFTDOWN);
    MouseButton(MOUSEEVENTF_LEFTUP);
    return 0;
}

int Record(HWND window, const std::wstring& file) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (Press(window, 1124) != 0 || !veltor::test::AnswerFileDialog(processId, file)) {
        std::fprintf(stderr, "the save dialog for the recording did not come or go\n");
        return 1;
    }
    return 0;
}

int WaitForLog(HWND window, const std::wstring& text, double seconds) {
    const ULONGLONG until = GetTickCount64() + static_cast<ULONGLONG>(seconds * 1000.0);
    while (LogText(window).find(text) == std::wstring::npos) {
        if (GetTickCount64() > until || !IsWindow(window)) {
            std::fprintf(stderr, "the session log never said \"%s\"\n", Utf8(text).c_str());
            return 1;
        }
        Sleep(50);
    }
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
    if (command == "press" && argc > 2) return Press(window, std::atoi(argv[2]));
    if (command == "record" && argc > 2) return Record(window, Wide(argv[2]));
    if (command == "wait-log" && argc > 2) return WaitForLog(window, Wide(argv[2]), argc > 3 ? std::atof(argv[3]) : 60.0);
    if (command == "bind" && argc > 4) return sessionprobe::BindWheelButton(window, std::atoi(argv[2]), Wide(argv[3]), argv[4]);
    if (command == "value" && argc > 2) {
        std::puts(Utf8(veltor::test::WindowText(GetWindow(GetDlgItem(window, std::atoi(argv[2])), GW_HWNDPREV))).c_str());
        return 0;
    }
    if (command == "log") {
        std::fputs(Utf8(LogText(window)).c_str(), stdout);
        return 0;
    }
    if (command == "close") {
        PostMessageW(window, WM_CLOSE, 0, 0);
        return 0;
    }
    std::fprintf(stderr, "usage: session_probe painted | press ID | record FILE | wait-log TEXT [SECONDS] | log |"
                         " close | analyzer | analyzer-apply | analyzer-close | wheel-summary FILE |"
                         " bind ID FILE PRESS | value ID\n");
    return 2;
}
