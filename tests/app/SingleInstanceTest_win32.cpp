// One program at a time: a second start hands over to the first and ends, and the first takes a hand-off
// only when it is well formed.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ProgramWindow_win32.h"

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
    EXPECT_EQ(veltor::test::WindowText(log).find(L"Advice file received"), std::wstring::npos);
}

TEST_F(SingleInstance, SecondStartWithAdviceHandsThePathToTheFirst) {
    Process second(folder.Exe, L"--Apply-Advice \"C:\\advice files\\first.ini\" --apply-advice C:\\second.ini");
    EXPECT_EQ(second.WaitForExit(), 0);
    EXPECT_TRUE(WaitForLog(L"Advice file received: C:\\advice files\\first.ini\r\n"));
    EXPECT_EQ(veltor::test::WindowText(log).find(L"second.ini"), std::wstring::npos);
}

TEST_F(SingleInstance, HandOffIsTakenOnlyWithTheTagAPathAndRoomForItsTerminator) {
    wchar_t path[] = L"C:\\advice.ini";
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
    EXPECT_TRUE(WaitForLog(L"Advice file received: C:\\advice.ini\r\n"));
}

}  // namespace
