#pragma once
#include <windows.h>

#include <cstring>
#include <initializer_list>
#include <string>

namespace veltor::test {

constexpr DWORD kStartTimeoutMs = 60000;  // a cold Wine prefix starts slowly

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

inline bool HoldsInOrder(const std::string& out, std::initializer_list<std::string> texts) {
    size_t at = 0;
    for (const std::string& text : texts) {
        at = out.find(text, at);
        if (at == std::string::npos) return false;
        at += text.size();
    }
    return true;
}

// A child process whose output goes to a file, read back while it runs; it inherits this environment.
class Child {
public:
    Child(const std::wstring& commandLine, const std::wstring& outputPath) : path(outputPath) {
        SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
        output = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                             CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = output;
        startup.hStdError = output;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        std::wstring mutableLine = commandLine;
        started = output != INVALID_HANDLE_VALUE &&
                  CreateProcessW(nullptr, mutableLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                                 &process) != 0;
    }
    ~Child() {
        if (started) {
            if (WaitForSingleObject(process.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(process.hProcess, 1);
            CloseHandle(process.hThread);
            CloseHandle(process.hProcess);
        }
        if (output != INVALID_HANDLE_VALUE) CloseHandle(output);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::string Output() const {
        std::string text;
        HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return text;
        char chunk[4096];
        DWORD got = 0;
        while (ReadFile(file, chunk, sizeof chunk, &got, nullptr) && got > 0) text.append(chunk, got);
        CloseHandle(file);
        return text;
    }
    // Polls the output until it holds `texts` in this order; false after the timeout.
    bool WaitForOutput(std::initializer_list<std::string> texts, DWORD timeoutMs = kStartTimeoutMs) const {
        for (DWORD waited = 0;; waited += 100) {
            if (HoldsInOrder(Output(), texts)) return true;
            if (waited >= timeoutMs) return false;
            Sleep(100);
        }
    }
    bool WaitForExit(DWORD timeoutMs = kStartTimeoutMs) const {
        return WaitForSingleObject(process.hProcess, timeoutMs) == WAIT_OBJECT_0;
    }

    bool started = false;

private:
    std::wstring path;
    HANDLE output = INVALID_HANDLE_VALUE;
    PROCESS_INFORMATION process{};
};

}  // namespace veltor::test
