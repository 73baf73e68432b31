// The program's entry: priority, the one option, the single instance, then App.
#include "app/App.h"

#include <shellapi.h>

#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/ControlCatalogue.h"

namespace {

// App embeds the engine and its recording ring (about 720 KB) and lives on this thread's stack. The link
// sets the main thread's reserve to VELTOR_MAIN_STACK_RESERVE for both toolchains; App may take half.
static_assert(sizeof(veltor::App) <= VELTOR_MAIN_STACK_RESERVE / 2, "App outgrew the main thread's stack reserve");

std::wstring ReadAdvicePath() {
    int count = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &count);
    if (argv == nullptr) return {};
    const std::vector<std::wstring> arguments(argv, argv + count);
    LocalFree(argv);
    return veltor::FindAdvicePath(arguments);
}

// A second instance brings the first one forward and hands it the advice path, if there is one.
void HandOff(const std::wstring& advicePath) {
    HWND first = FindWindowW(veltor::kMainWindowClass, nullptr);
    if (first == nullptr) return;
    if (!advicePath.empty()) {
        COPYDATASTRUCT data{};
        data.dwData = veltor::kHandOffTag;
        data.cbData = static_cast<DWORD>((advicePath.size() + 1) * sizeof(wchar_t));
        data.lpData = const_cast<wchar_t*>(advicePath.c_str());
        SendMessageW(first, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }
    ShowWindow(first, SW_RESTORE);
    SetForegroundWindow(first);
}

int RunFirstInstance(HINSTANCE instance, int showCommand, const std::wstring& advicePath, HANDLE mutex) {
    veltor::App app;
    const int exitCode = app.AppRun(instance, showCommand, advicePath);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    return exitCode;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int showCommand) {
    SetPriorityClass(GetCurrentProcess(), ABOVE_NORMAL_PRIORITY_CLASS);
    const std::wstring advicePath = ReadAdvicePath();
    HANDLE mutex = CreateMutexW(nullptr, TRUE, veltor::kSingleInstanceMutex);
    if (mutex == nullptr) return 1;
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        HandOff(advicePath);
        CloseHandle(mutex);
        return 0;
    }
    return RunFirstInstance(instance, showCommand, advicePath, mutex);
}
