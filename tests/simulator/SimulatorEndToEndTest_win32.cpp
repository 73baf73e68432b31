// Our simulator.exe and the engine harness as two processes: the engine finds the named objects, follows
// the session text, and silences and restores the simulator's force through the broadcast.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

namespace {

constexpr DWORD kStartTimeoutMs = 60000;   // a cold Wine prefix starts slowly
constexpr DWORD kPollMs = 100;

bool HoldsInOrder(const std::string& out, std::initializer_list<std::string> texts) {
    size_t at = 0;
    for (const std::string& text : texts) {
        at = out.find(text, at);
        if (at == std::string::npos) return false;
        at += text.size();
    }
    return true;
}

// A child process whose standard output goes to a file, read back while it runs.
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
    bool WaitForOutput(std::initializer_list<std::string> texts, DWORD timeoutMs) const {
        for (DWORD waited = 0;; waited += kPollMs) {
            if (HoldsInOrder(Output(), texts)) return true;
            if (waited >= timeoutMs) return false;
            Sleep(kPollMs);
        }
    }
    bool WaitForOutput(const std::string& text, DWORD timeoutMs) const { return WaitForOutput({text}, timeoutMs); }
    bool WaitForExit(DWORD timeoutMs) const { return WaitForSingleObject(process.hProcess, timeoutMs) == WAIT_OBJECT_0; }

    bool started = false;

private:
    std::wstring path;
    HANDLE output = INVALID_HANDLE_VALUE;
    PROCESS_INFORMATION process{};
};

// The build tree's paths are Unix paths when the tests run under Wine: its drive Z: is the root.
std::wstring ProgramPath(const char* text) {
    std::wstring path(text, text + strlen(text));
    if (path.empty() || path[0] != L'/') return path;
    for (wchar_t& c : path) c = c == L'/' ? L'\\' : c;
    return L"Z:" + path;
}

std::wstring TempPath(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

size_t Find(const std::string& text, const std::string& what, size_t from = 0) { return text.find(what, from); }

// One simulator and one harness per test; the harness runs until the test writes its stop file.
class SimulatorEndToEnd : public ::testing::Test {
protected:
    void SetUp() override { DeleteFileW(stopFile.c_str()); }
    void TearDown() override { DeleteFileW(stopFile.c_str()); }

    void StartBoth(const std::wstring& simulatorArgs, const std::wstring& harnessArgs) {
        simulator = std::make_unique<Child>(L"\"" + ProgramPath(VELTOR_SIMULATOR_EXE) + L"\" " + simulatorArgs,
                                            TempPath(L"veltor_e2e_simulator.txt"));
        ASSERT_TRUE(simulator->started);
        ASSERT_TRUE(simulator->WaitForOutput("publishing the synthetic drive", kStartTimeoutMs)) << simulator->Output();
        harness = std::make_unique<Child>(L"\"" + ProgramPath(VELTOR_HARNESS_EXE) + L"\" --seconds 0 --stop-file \"" +
                                              stopFile + L"\" " + harnessArgs,
                                          TempPath(L"veltor_e2e_harness.txt"));
        ASSERT_TRUE(harness->started);
    }
    // Stops the harness through its stop file; true once it has exited.
    bool StopHarness() {
        CloseHandle(CreateFileW(stopFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
        return harness->WaitForExit(kStartTimeoutMs);
    }

    const std::wstring stopFile = TempPath(L"veltor_e2e_stop");
    std::unique_ptr<Child> simulator;
    std::unique_ptr<Child> harness;
};

TEST_F(SimulatorEndToEnd, EngineFollowsTheSessionAndSilencesThenRestoresTheSimulatorsForce) {
    StartBoth(L"--seconds 60 --swap-identity-at 7", L"");
    const bool swapped = harness->WaitForOutput("car porsche992rgt3, driver \"Second Driver\"", kStartTimeoutMs);
    ASSERT_TRUE(StopHarness());
    const bool restored = simulator->WaitForOutput("maximum force 2621440", 10000);

    const std::string engine = harness->Output();
    const std::string sim = simulator->Output();
    EXPECT_TRUE(swapped) << engine;
    const size_t connected = Find(engine, "status: connected, ");
    EXPECT_NE(Find(engine, "car bmwm4gt3, driver \"Synthetic Driver\", user id 424242, name known 1"), std::string::npos);
    const size_t onTrack = Find(engine, "status: connected, on track, car bmwm4gt3, driver \"Synthetic Driver\"");
    ASSERT_NE(connected, std::string::npos) << engine;
    ASSERT_NE(onTrack, std::string::npos) << engine;
    EXPECT_LE(connected, onTrack);
    EXPECT_NE(Find(engine, "user id 515151", onTrack), std::string::npos) << engine;
    EXPECT_NE(Find(engine, "engine stopped, running 0"), std::string::npos) << engine;

    // Force strength 50 without the wheelbase mode: 10000 Nm as 16.16, then 40 Nm back after the stop.
    const size_t suppressed = Find(sim, "broadcast: maximum force 655360000");
    ASSERT_NE(suppressed, std::string::npos) << sim;
    EXPECT_TRUE(restored) << sim;
    EXPECT_NE(Find(sim, "broadcast: maximum force 2621440", suppressed), std::string::npos) << sim;
}

// The simulator leaves and comes back while the engine holds its handles: the named objects live on, so
// the engine sees the status bit fall and rise again in the same memory. The session's user id differs
// from the block's, and the wheelbase mode sets the suppression from the force strength.
TEST_F(SimulatorEndToEnd, EngineFollowsTheSimulatorAwayAndBackWithTheWheelbaseSuppression) {
    StartBoth(L"--seconds 60 --identity differing-ids --disappear-at 4 --absent-for 2",
              L"SimucubeMode=1 ForceStrength=40");
    const bool back = harness->WaitForOutput({"status: connected", "status: disconnected", "status: connected"},
                                             kStartTimeoutMs);
    ASSERT_TRUE(StopHarness());
    const std::string engine = harness->Output();
    EXPECT_TRUE(back) << engine << simulator->Output();
    EXPECT_NE(Find(engine, "driver \"Synthetic Driver\", user id 424242, name known 0"), std::string::npos) << engine;
    // 2000 / 40 = 50 Nm as 16.16, once for the whole connection.
    const bool restored = simulator->WaitForOutput("maximum force 2621440", 10000);
    const std::string sim = simulator->Output();
    EXPECT_TRUE(restored) << sim;
    const size_t suppressed = Find(sim, "broadcast: maximum force 3276800");
    ASSERT_NE(suppressed, std::string::npos) << sim;
    EXPECT_EQ(Find(sim, "broadcast: maximum force 3276800", suppressed + 1), std::string::npos) << sim;
}

}  // namespace
