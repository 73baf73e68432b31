// One program at a time: a second start hands over to the first and ends, and the first takes a hand-off
// only when it is well formed.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "RunningProgram_win32.h"

namespace veltor::test {
namespace {

constexpr ULONG_PTR kTag = 'Q' | 'K' << 8 | 'V' << 16 | static_cast<ULONG_PTR>('T') << 24;
constexpr wchar_t kRefused[] = L"Could not load analyzer advice file.\r\n";

class SingleInstance : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(first.Start()) << "no painted window"; }

    RunningProgram first{VELTOR_GRIPLINE_EXE};
};

TEST_F(SingleInstance, SecondStartRestoresTheFirstWindowAndEndsWithZero) {
    ShowWindow(first.window, SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(first.window));
    Process second(first.folder.Exe, L"");
    EXPECT_EQ(second.WaitForExit(), 0);
    EXPECT_TRUE(WaitUntil([&] { return !IsIconic(first.window); }));
    EXPECT_EQ(first.Log().find(L"advice"), std::wstring::npos);
}

// The first instance applies the first advice path and deletes the file, good or bad, before the second
// instance ends.
TEST_F(SingleInstance, SecondStartWithAdviceHasTheFirstApplyTheFirstPath) {
    const std::wstring advice = first.folder.Path + L"\\advice files.ini";
    const std::wstring other = first.folder.Path + L"\\other.ini";
    const char* good = "[Advice]\r\nVersion=1\r\nProfile=Hand Off\r\nHasProfileSettings=1\r\nForceStrength=70\r\n";
    const struct {
        const char* text;
        const wchar_t* line;
    } cases[] = {
        {good, L"Analyzer advice applied to profile Hand Off.\r\n"},
        {"[Advice]\r\nProfile=No Version\r\nHasProfileSettings=1\r\n", kRefused},
    };
    for (const auto& c : cases) {
        const size_t from = first.Log().size();
        ASSERT_TRUE(WriteTextFile(advice, c.text));
        ASSERT_TRUE(WriteTextFile(other, good));
        Process second(first.folder.Exe, L"--Apply-Advice \"" + advice + L"\" --apply-advice \"" + other + L"\"");
        EXPECT_EQ(second.WaitForExit(), 0);
        EXPECT_FALSE(FileExists(advice));
        EXPECT_TRUE(FileExists(other));
        EXPECT_TRUE(first.WaitForLog({c.line}, from));
    }
    EXPECT_EQ(first.Text(1008), L"Hand Off");
}

TEST_F(SingleInstance, HandOffIsTakenOnlyWithTheTagAPathAndRoomForItsTerminator) {
    wchar_t path[] = L"C:\\no such advice.ini";
    const struct {
        ULONG_PTR tag;
        DWORD bytes;
        wchar_t* data;
        LRESULT answer;
    } cases[] = {
        {kTag, sizeof path, path, 1}, {kTag + 1, sizeof path, path, 0}, {kTag, sizeof path, nullptr, 0},
        {kTag, 1, path, 0},           {kTag, 0, path, 0},
        {kTag, 2, path, 1},  // an empty path still fits its terminator
    };
    for (const auto& c : cases) {
        COPYDATASTRUCT data{c.tag, c.bytes, c.data};
        EXPECT_EQ(SendMessageW(first.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), c.answer)
            << "tag " << c.tag << " bytes " << c.bytes;
    }
    // The handler has run by the time SendMessageW returns: one refusal for each message taken.
    EXPECT_EQ(first.CountInLog(kRefused), 2u);
}

}  // namespace
}  // namespace veltor::test
