// "Veltor Commercial Analyzer.exe": a GUI-subsystem program, so Gripline can start it without a console
// flashing up. With a file, or nothing, it opens its window; --report and --advice run without one and
// show the result where the user is: in the output a script redirected, in the console it was typed in,
// or else in a message box.
#include <windows.h>
#include <shellapi.h>

#include <string>
#include <vector>

#include "analyzer/AnalyzerCommand.h"
#include "analyzer/AnalyzerWindow.h"
#include "analyzer/StoredSettings.h"
#include "profiles/IniEncoding.h"
#include "profiles/ProfileStore.h"

namespace {

constexpr size_t kMessageBoxCharacters = 6000;  // a longer text is cut with a note

std::string Utf8(const wchar_t* text) {
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (bytes <= 1) return {};
    std::string result(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), bytes, nullptr, nullptr);
    result.pop_back();
    return result;
}


std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> args;
    for (int i = 1; argv != nullptr && i < count; ++i) args.push_back(Utf8(argv[i]));
    LocalFree(argv);
    return args;
}

// A pipe or file that a script's redirection gave us; a console handle is written through the console.
bool Inherited(HANDLE handle) {
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return false;
    const DWORD type = GetFileType(handle);
    return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE;
}

void WriteBytes(HANDLE handle, const std::string& text) {
    DWORD written = 0;
    if (!text.empty()) WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

// The console of the command prompt that started us; wide text, so any name prints as it is.
bool WriteToParentConsole(const std::string& out, const std::string& err) {
    if (!AttachConsole(ATTACH_PARENT_PROCESS)) return false;
    HANDLE console = CreateFileW(L"CONOUT$", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (console == INVALID_HANDLE_VALUE) return false;
    const std::wstring text = L"\r\n" + veltor::DecodeIniBytes(out + err);
    DWORD written = 0;
    WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(console);
    return true;
}

void ShowInMessageBox(const std::string& out, const std::string& err, int exitCode) {
    std::wstring text = veltor::DecodeIniBytes(err.empty() ? out : err + (out.empty() ? "" : "\n" + out));
    if (text.size() > kMessageBoxCharacters) {
        text.resize(kMessageBoxCharacters);
        text += L"\n... (run with --report FILE in a command prompt for the whole text)";
    }
    MessageBoxW(nullptr, text.c_str(), veltor::analyzer::kAnalyzerTitle,
                MB_OK | (exitCode == veltor::analyzer::kExitSuccess ? MB_ICONINFORMATION : MB_ICONWARNING));
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int showCommand) {
    using namespace veltor::analyzer;
    // A telemetry file runs with what Gripline beside us would drive that car with.
    const auto settingsForCar = [](std::wstring_view car) { return StoredSettingsForCar(veltor::IniFilePath(), car); };
    const std::string programName = "Veltor Commercial Analyzer";
    AnalyzerCommand command;
    std::string error;
    CommandOutcome outcome;
    if (!ParseAnalyzerArguments(Arguments(), command, error)) {
        outcome = UsageFailure(programName, error);
    } else if (command.kind == CommandKind::Open) {
        AnalyzerWindow window;
        return window.Run(instance, showCommand, command.input.wstring(), settingsForCar);
    } else {
        outcome = RunAnalyzerCommand(command, programName, settingsForCar);
    }
    HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    HANDLE err = GetStdHandle(STD_ERROR_HANDLE);
    if (Inherited(out) || Inherited(err)) {
        WriteBytes(Inherited(out) ? out : err, outcome.out);
        WriteBytes(Inherited(err) ? err : out, outcome.err);
    } else if (!WriteToParentConsole(outcome.out, outcome.err)) {
        ShowInMessageBox(outcome.out, outcome.err, outcome.exitCode);
    }
    return outcome.exitCode;
}
