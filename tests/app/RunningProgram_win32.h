#pragma once
// Gripline.exe driven as a user drives it, from this process: its buttons pressed, switches flipped, text
// typed and the focus moved by window messages, and what it shows read back from its controls. Every wait is
// for what the program shows, under a generous deadline.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "ProgramWindow_win32.h"

namespace veltor::test {

class RunningProgram {
public:
    explicit RunningProgram(const char* programPath) : folder(programPath) {}
    ~RunningProgram() {
        if (window != nullptr && IsWindow(window)) PostMessageW(window, WM_CLOSE, 0, 0);
        if (process) process->WaitForExit();
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    // Starts the copy and waits for its painted window; false if none came.
    bool Start(const std::wstring& arguments = L"") {
        if (!folder.copied) return false;
        process = std::make_unique<Process>(folder.Exe, arguments);
        window = process->started ? WaitForPaintedWindow(L"VeltorCommercialWindow", process->info.dwProcessId) : nullptr;
        log = window != nullptr ? GetWindow(GetWindow(window, GW_CHILD), GW_HWNDLAST) : nullptr;
        return window != nullptr;
    }

    HWND Control(int id) const { return GetDlgItem(window, id); }
    std::wstring Text(int id) const { return WindowText(Control(id)); }
    // The child `steps` places before a control: a slider's value text is 1, its name 2.
    std::wstring Before(int id, int steps) const {
        HWND child = Control(id);
        while (child != nullptr && steps-- > 0) child = GetWindow(child, GW_HWNDPREV);
        return child != nullptr ? WindowText(child) : L"";
    }
    std::wstring ValueText(int sliderId) const { return Before(sliderId, 1); }
    bool Enabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
    std::wstring Log() const { return WindowText(log); }

    // Posted, so that a command which opens a dialog doesn't hold this thread.
    void Press(int id) const { PostMessageW(Control(id), BM_CLICK, 0, 0); }
    // The checkbox flips on the release of the mouse button over it.
    void Flip(int id) const { PostMessageW(Control(id), WM_LBUTTONUP, 0, 0); }
    void Key(int id, WPARAM key) const { PostMessageW(Control(id), WM_KEYDOWN, key, 1); }
    // Text typed into a box, then the focus taken away from it.
    void Type(int id, const std::wstring& text) const {
        SendMessageW(Control(id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
        SendMessageW(Control(id), WM_KILLFOCUS, 0, 0);
    }
    // An item picked from a list, with the notification the list sends its parent.
    void Pick(int id, int item) const {
        SendMessageW(Control(id), CB_SETCURSEL, static_cast<WPARAM>(item), 0);
        SendMessageW(window, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(Control(id)));
    }
    std::vector<std::wstring> Items(int id) const {
        std::vector<std::wstring> items;
        const int count = static_cast<int>(SendMessageW(Control(id), CB_GETCOUNT, 0, 0));
        for (int item = 0; item < count; ++item) {
            std::wstring text(static_cast<size_t>(SendMessageW(Control(id), CB_GETLBTEXTLEN, item, 0)) + 1, L'\0');
            text.resize(static_cast<size_t>(SendMessageW(Control(id), CB_GETLBTEXT, item, reinterpret_cast<LPARAM>(text.data()))));
            items.push_back(text);
        }
        return items;
    }

    // The log holds these lines, in this order, after the first `from` characters.
    bool WaitForLog(std::initializer_list<std::wstring> lines, size_t from = 0, DWORD timeoutMs = kWindowTimeoutMs) const {
        return WaitUntil([&] { return HoldsInOrder(Log(), lines, from); }, timeoutMs);
    }
    bool WaitForText(int id, const std::wstring& text) const {
        return WaitUntil([&] { return Text(id) == text; });
    }
    size_t CountInLog(const std::wstring& line) const {
        size_t count = 0;
        const std::wstring text = Log();
        for (size_t at = text.find(line); at != std::wstring::npos; at = text.find(line, at + line.size())) ++count;
        return count;
    }

    // Closes the window as its close box does; the exit code, or -1.
    long Close() {
        PostMessageW(window, WM_CLOSE, 0, 0);
        window = nullptr;
        return process->WaitForExit();
    }

    ProgramFolder folder;
    std::unique_ptr<Process> process;
    HWND window = nullptr;
    HWND log = nullptr;  // the session log panel, the last child
};

// The folder's INI file as text (the store writes UTF-16 with its mark), expected to hold each of `parts`.
inline std::wstring IniHolding(const ProgramFolder& folder, std::initializer_list<std::wstring> parts) {
    const std::string bytes = ReadAll(std::filesystem::path(folder.Path) / L"Veltor_profiles.ini");
    std::wstring text(bytes.size() / 2, L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    if (text.size() > 0 && text[0] == 0xFEFF) text.erase(0, 1);
    for (const std::wstring& part : parts) EXPECT_NE(text.find(part), std::wstring::npos) << part;
    return text;
}

// A file written for the program to read, in the system's code page.
inline bool WriteTextFile(const std::wstring& path, const std::string& text) {
    return static_cast<bool>(std::ofstream(std::filesystem::path(path), std::ios::binary) << text);
}

inline bool FileExists(const std::wstring& path) { return std::filesystem::exists(path); }

// A suite whose tests follow each other through one run of the program, made and started by the suite's
// SetUpTestSuite; at the end the simulator goes first, as its output file lies in the program's folder.
class OneRun : public ::testing::Test {
protected:
    static void TearDownTestSuite() {
        simulator.reset();
        program.reset();
    }
    void SetUp() override { ASSERT_TRUE(started) << "no painted window"; }

    // The virtual wheel beside the copy, as its dinput8.dll; the path of the wheel's call log comes back.
    static std::wstring AddVirtualWheel(const char* dll) {
        CopyFileW(ProgramPath(dll).c_str(), (program->folder.Path + L"\\dinput8.dll").c_str(), FALSE);
        const std::wstring log = program->folder.Path + L"\\wheel.log";
        SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", log.c_str());
        return log;
    }
    static bool StartSimulator(const char* exe, const wchar_t* options) {
        simulator = std::make_unique<Process>(ProgramPath(exe), options, program->folder.Path + L"\\simulator.txt");
        return simulator->started;
    }

    static inline std::unique_ptr<RunningProgram> program;
    static inline std::unique_ptr<Process> simulator;
    static inline bool started = false;
};

}  // namespace veltor::test
