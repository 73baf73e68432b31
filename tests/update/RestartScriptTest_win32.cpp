#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ChildProcess_win32.h"
#include "update/RestartScript.h"
#include "update/Utf8Text.h"
#include "update/WriteBytes.h"

// The restart script under Wine's cmd.exe, on stand-in files: the "new program" is a small executable
// that marks its own start.
namespace veltor {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kScriptDeadlineMs = 120000;

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

template <typename Condition>
bool WaitFor(Condition condition, DWORD timeoutMs = kScriptDeadlineMs) {
    for (DWORD waited = 0;; waited += 100) {
        if (condition()) return true;
        if (waited >= timeoutMs) return false;
        Sleep(100);
    }
}

std::vector<fs::path> Scripts() {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(fs::path(test::TempPath(L"")))) {
        const std::wstring name = entry.path().filename().wstring();
        if (name.rfind(L"Veltor-Commercial-Update-", 0) == 0 && entry.path().extension() == L".cmd") {
            found.push_back(entry.path());
        }
    }
    return found;
}

// Holds a file open without sharing, as a running program holds its executable.
class Lock {
public:
    explicit Lock(const fs::path& path)
        : handle(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~Lock() { Release(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    bool Held() const { return handle != INVALID_HANDLE_VALUE; }
    void Release() {
        if (Held()) CloseHandle(handle);
        handle = INVALID_HANDLE_VALUE;
    }

private:
    HANDLE handle;
};

class RestartScriptRun : public testing::Test {
protected:
    void SetUp() override {
        for (const fs::path& stale : Scripts()) fs::remove(stale);
        fs::remove_all(folder);
        fs::create_directories(folder);
        std::ofstream(app, std::ios::binary) << "old app";
        std::ofstream(analyzer, std::ios::binary) << "old analyzer";
        ASSERT_TRUE(fs::copy_file(marker, newApp, fs::copy_options::overwrite_existing));
        std::ofstream(newAnalyzer, std::ios::binary) << "new analyzer";
    }
    void TearDown() override {
        for (const fs::path& script : Scripts()) fs::remove(script);
        fs::remove_all(folder);
        fs::remove(newApp);
        fs::remove(newAnalyzer);
    }

    const fs::path marker = fs::path(test::ProgramPath(VELTOR_MARKER_EXE));
    const fs::path folder = fs::path(test::TempPath(L"gripline restart test"));  // a blank to quote
    const fs::path app = folder / L"Gripline.exe";
    const fs::path analyzer = folder / kAnalyzerFileName;
    const fs::path newApp = fs::path(test::TempPath(kNewAppFileName));
    const fs::path newAnalyzer = fs::path(test::TempPath(kNewAnalyzerFileName));
    const fs::path started = folder / L"Gripline.exe.started";
};

TEST_F(RestartScriptRun, WaitsForTheProgramThenReplacesStartsAndCleansUp) {
    Lock running(app);
    ASSERT_TRUE(running.Held());
    std::wstring error;
    ASSERT_TRUE(WriteRestartScript(nullptr, newApp.wstring(), app.wstring(), newAnalyzer.wstring(),
                                   analyzer.wstring(), error))
        << testing::PrintToString(error);
    ASSERT_EQ(Scripts().size(), 1u);
    // Two or three copies fail while the program still holds its file.
    Sleep(3000);
    EXPECT_FALSE(fs::exists(started));
    running.Release();

    EXPECT_TRUE(WaitFor([&] { return fs::exists(started); })) << "the new program did not start";
    EXPECT_TRUE(WaitFor([&] { return Scripts().empty(); })) << "the script did not delete itself";
    EXPECT_EQ(ReadAll(app), ReadAll(marker));
    EXPECT_EQ(ReadAll(analyzer), "new analyzer");
    EXPECT_FALSE(fs::exists(newApp));
    EXPECT_FALSE(fs::exists(newAnalyzer));
}

TEST_F(RestartScriptRun, GivesUpAfterTenFailedCopiesAndTouchesNothing) {
    Lock running(app);
    ASSERT_TRUE(running.Held());
    const fs::path script = RestartScriptPath(test::TempPath(L""), GetTickCount());
    ASSERT_TRUE(WriteText(script.wstring(), RestartScriptText(WideToUtf8(newApp.wstring()), WideToUtf8(app.wstring()),
                                                              WideToUtf8(newAnalyzer.wstring()),
                                                              WideToUtf8(analyzer.wstring()))));
    std::wstring command = L"cmd.exe /c \"" + script.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                               &startup, &process));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, kScriptDeadlineMs), WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    running.Release();

    EXPECT_EQ(code, 1u);
    EXPECT_EQ(ReadAll(app), "old app");
    EXPECT_EQ(ReadAll(analyzer), "old analyzer");
    EXPECT_FALSE(fs::exists(started));
    EXPECT_TRUE(fs::exists(script));
    EXPECT_TRUE(fs::exists(newApp));
    EXPECT_TRUE(fs::exists(newAnalyzer));
}

TEST(AnalyzerExePath, NamesTheAnalyzerBesideThisProgram) {
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    EXPECT_EQ(fs::path(AnalyzerExePath()), fs::path(self).parent_path() / L"Veltor Commercial Analyzer.exe");
}

}  // namespace
}  // namespace veltor
