// One program at a time: a second start hands over to the first and ends, and the first takes a hand-off
// only when it is well formed.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ProgramWindow_win32.h"
#include "RunningProgram_win32.h"

namespace {

using veltor::test::Process;
using veltor::test::ProgramFolder;

constexpr ULONG_PTR kTag = 'Q' | 'K' << 8 | 'V' << 16 | static_cast<ULONG_PTR>('T') << 24;

class SingleInstance : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.copied);
        first = std::make_unique<Process>(folder.Exe, L"");
        window = veltor::test::WaitForPaintedWindow(*first);
        ASSERT_NE(window, nullptr);
        log = GetWindow(window, GW_CHILD);
        while (log != nullptr && GetWindow(log, GW_HWNDNEXT) != nullptr) log = GetWindow(log, GW_HWNDNEXT);
    }
    void TearDown() override {
        if (window != nullptr) PostMessageW(window, WM_CLOSE, 0, 0);
        if (first) first->WaitForExit();
    }
    bool WaitForLog(const std::wstring& line) const {
        const ULONGLONG until = GetTickCount64() + veltor::test::kWindowTimeoutMs;
        while (veltor::test::WindowText(log).find(line) == std::wstring::npos) {
            if (GetTickCount64() > until) return false;
            Sleep(20);
        }
        return true;
    }

    ProgramFolder folder{VELTOR_GRIPLINE_EXE};
    std::unique_ptr<Process> first;
    HWND window = nullptr;
    HWND log = nullptr;  // the session log, the last child
};

TEST_F(SingleInstance, SecondStartRestoresTheFirstWindowAndEndsWithZero) {
    ShowWindow(window, SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(window));
    Process second(folder.Exe, L"");
    EXPECT_EQ(second.WaitForExit(), 0);
    const ULONGLONG until = GetTickCount64() + veltor::test::kWindowTimeoutMs;
    while (IsIconic(window) && GetTickCount64() < until) Sleep(20);
    EXPECT_FALSE(IsIconic(window));
    EXPECT_EQ(veltor::test::WindowText(log).find(L"advice"), std::wstring::npos);
}

// The first instance applies the first advice path and deletes the file, good or bad, before the second
// instance ends.
TEST_F(SingleInstance, SecondStartWithAdviceHasTheFirstApplyTheFirstPath) {
    const std::wstring first = folder.Path + L"\\advice files.ini";
    const std::wstring other = folder.Path + L"\\other.ini";
    const struct {
        const char* text;
        const wchar_t* line;
    } cases[] = {
        {"[Advice]\r\nVersion=1\r\nProfile=Hand Off\r\nHasProfileSettings=1\r\nForceStrength=70\r\n",
         L"Analyzer advice applied to profile Hand Off.\r\n"},
        {"[Advice]\r\nProfile=No Version\r\nHasProfileSettings=1\r\n", L"Could not load analyzer advice file.\r\n"},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(veltor::test::WriteTextFile(first, c.text));
        ASSERT_TRUE(veltor::test::WriteTextFile(other, cases[0].text));
        Process second(folder.Exe, L"--Apply-Advice \"" + first + L"\" --apply-advice \"" + other + L"\"");
        EXPECT_EQ(second.WaitForExit(), 0);
        EXPECT_FALSE(veltor::test::FileExists(first));
        EXPECT_TRUE(veltor::test::FileExists(other));
        EXPECT_TRUE(WaitForLog(c.line));
    }
    EXPECT_EQ(veltor::test::WindowText(GetDlgItem(window, 1008)), L"Hand Off");
}

TEST_F(SingleInstance, HandOffIsTakenOnlyWithTheTagAPathAndRoomForItsTerminator) {
    wchar_t path[] = L"C:\\no such advice.ini";
    const struct {
        ULONG_PTR tag;
        DWORD bytes;
        void* data;
        LRESULT answer;
    } cases[] = {
        {kTag, sizeof path, path, 1},
        {kTag + 1, sizeof path, path, 0},
        {kTag, 1, path, 0},
        {kTag, 0, path, 0},
        {kTag, 2, path, 1},  // an empty path still fits its terminator
    };
    for (const auto& c : cases) {
        COPYDATASTRUCT data{c.tag, c.bytes, c.data};
        EXPECT_EQ(SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), c.answer)
            << "tag " << c.tag << " bytes " << c.bytes;
    }
    // The handler has run by the time SendMessageW returns: one refusal for each message taken.
    const std::wstring text = veltor::test::WindowText(log);
    size_t refusals = 0;
    for (size_t at = text.find(L"Could not load analyzer advice file."); at != std::wstring::npos;
         at = text.find(L"Could not load analyzer advice file.", at + 1)) {
        ++refusals;
    }
    EXPECT_EQ(refusals, 2u);
}

}  // namespace
