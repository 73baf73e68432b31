#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TestFeed_win32.h"
#include "update/RestartScript.h"
#include "update/Utf8Text.h"
#include "update/WriteBytes.h"

// The restart script under Wine's cmd.exe when the program never lets go of its file. Its way through,
// the files replaced and the new version started, is the accepted update in UpdateFlowTest_win32.cpp.
namespace veltor {
namespace {

namespace fs = std::filesystem;

using test::ReadAll;

TEST(RestartScriptRun, GivesUpAfterTenFailedCopiesAndTouchesNothing) {
    const fs::path folder = fs::path(test::TempPath(L"gripline restart test"));  // a blank to quote
    const fs::path app = folder / L"Gripline.exe";
    const fs::path analyzer = folder / kAnalyzerFileName;
    const fs::path newApp = fs::path(test::TempPath(kNewAppFileName));
    const fs::path newAnalyzer = fs::path(test::TempPath(kNewAnalyzerFileName));
    fs::remove_all(folder);
    fs::create_directories(folder);
    test::Put(app, "old app");
    test::Put(analyzer, "old analyzer");
    test::Put(newApp, "new app");
    test::Put(newAnalyzer, "new analyzer");
    const fs::path script = RestartScriptPath(test::TempPath(L""), GetTickCount());
    ASSERT_TRUE(WriteText(script.wstring(), RestartScriptText(WideToUtf8(newApp.wstring()), WideToUtf8(app.wstring()),
                                                              WideToUtf8(newAnalyzer.wstring()),
                                                              WideToUtf8(analyzer.wstring()))));

    // Held open without sharing, as a running program holds its executable.
    HANDLE running = CreateFileW(app.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(running, INVALID_HANDLE_VALUE);
    std::wstring command = L"cmd.exe /c \"" + script.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                               &startup, &process));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 120000), WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(running);

    EXPECT_EQ(code, 1u);
    EXPECT_EQ(ReadAll(app), "old app");
    EXPECT_EQ(ReadAll(analyzer), "old analyzer");
    EXPECT_TRUE(fs::exists(script));
    EXPECT_EQ(ReadAll(newApp), "new app");
    EXPECT_EQ(ReadAll(newAnalyzer), "new analyzer");
    for (const fs::path& file : {script, newApp, newAnalyzer}) fs::remove(file);
    fs::remove_all(folder);
}

}  // namespace
}  // namespace veltor
