#pragma once
// Programs started from a test under Wine, and the polling waits for what they show.
#include <windows.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

namespace veltor::test {

constexpr DWORD kWindowTimeoutMs = 60000;  // a cold Wine prefix starts slowly

// The build tree's paths are Unix paths when the tests run under Wine: its drive Z: is the root.
inline std::wstring ProgramPath(const char* text) {
    std::wstring path(text, text + std::strlen(text));
    if (path.empty() || path[0] != L'/') return path;
    for (wchar_t& c : path) c = c == L'/' ? L'\\' : c;
    return L"Z:" + path;
}

inline std::wstring TempPath(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

// A file's bytes; empty when it does not exist.
inline std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Polls until `done` holds; false when the deadline passes first.
template <class Condition>
bool WaitUntil(Condition done, DWORD timeoutMs = kWindowTimeoutMs, DWORD pollMs = 20) {
    const ULONGLONG until = GetTickCount64() + timeoutMs;
    while (!done()) {
        if (GetTickCount64() > until) return false;
        Sleep(pollMs);
    }
    return true;
}

// `text` holds `parts` in this order after its first `from` characters.
template <class Text>
bool HoldsInOrder(const Text& text, std::initializer_list<Text> parts, size_t from = 0) {
    for (const Text& part : parts) {
        from = text.find(part, from);
        if (from == Text::npos) return false;
        from += part.size();
    }
    return true;
}

// One started program, ended by force if it still runs when this goes. With an `outputPath`, its output
// goes to that file, read back while it runs.
class Process {
public:
    Process(const std::wstring& exe, const std::wstring& arguments, const std::wstring& outputPath = L"",
            WORD show = SW_SHOWDEFAULT)
        : path(outputPath) {
        std::wstring line = L"\"" + exe + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = show == SW_SHOWDEFAULT ? 0 : STARTF_USESHOWWINDOW;
        startup.wShowWindow = show;
        if (!path.empty()) {
            SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
            output = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
            if (output == INVALID_HANDLE_VALUE) return;
            startup.dwFlags |= STARTF_USESTDHANDLES;
            startup.hStdOutput = startup.hStdError = output;
            startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        }
        started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, !path.empty(), 0, nullptr, nullptr, &startup,
                                 &info) != 0;
    }
    ~Process() {
        if (started) {
            if (!Ended()) TerminateProcess(info.hProcess, 99);
            WaitForSingleObject(info.hProcess, kWindowTimeoutMs);
            CloseHandle(info.hThread);
            CloseHandle(info.hProcess);
        }
        if (output != INVALID_HANDLE_VALUE) CloseHandle(output);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool Ended() const { return !started || WaitForSingleObject(info.hProcess, 0) == WAIT_OBJECT_0; }
    // The exit code once the process has ended within the time, or -1.
    long WaitForExit(DWORD timeoutMs = kWindowTimeoutMs) const {
        DWORD code = 0;
        if (!started || WaitForSingleObject(info.hProcess, timeoutMs) != WAIT_OBJECT_0) return -1;
        return GetExitCodeProcess(info.hProcess, &code) ? static_cast<long>(code) : -1;
    }
    std::string Output() const { return ReadAll(path); }
    bool WaitForOutput(std::initializer_list<std::string> texts, DWORD timeoutMs = kWindowTimeoutMs) const {
        return WaitUntil([&] { return HoldsInOrder(Output(), texts); }, timeoutMs, 100);
    }

    bool started = false;
    PROCESS_INFORMATION info{};

private:
    std::wstring path;
    HANDLE output = INVALID_HANDLE_VALUE;
};

}  // namespace veltor::test
