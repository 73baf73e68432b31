// The product as it runs for real, in three pieces under Wine: simulator.exe playing its synthetic drive,
// the engine harness with the product's wheel, and the virtual wheel DLL beside the harness, which loses
// input for a while.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr DWORD kStartTimeoutMs = 60000;  // a cold Wine prefix starts slowly
constexpr DWORD kPollMs = 100;
constexpr int64_t kWarmupMicroseconds = 1200000;
constexpr int64_t kRampMicroseconds = 1800000;
// The virtual wheel's first instance GUID, as the harness takes it: the 16 bytes in memory order.
const wchar_t* kVirtualWheelGuid = L"544C455649574548454C000000000001";

std::wstring ProgramPath(const char* text) {
    std::wstring path(text, text + std::strlen(text));
    if (path.empty() || path[0] != L'/') return path;
    for (wchar_t& c : path) c = c == L'/' ? L'\\' : c;
    return L"Z:" + path;  // Wine's drive Z: is the build tree's root
}

std::wstring TempPath(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

std::string ReadText(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// A program whose output goes to a file; it inherits this process's environment.
class Program {
public:
    Program(const std::wstring& commandLine, const std::wstring& outputPath) : path(outputPath) {
        SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
        output = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = output;
        startup.hStdError = output;
        std::wstring line = commandLine;
        started = output != INVALID_HANDLE_VALUE &&
                  CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    }
    ~Program() {
        if (started) {
            if (WaitForSingleObject(process.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(process.hProcess, 1);
            CloseHandle(process.hThread);
            CloseHandle(process.hProcess);
        }
        if (output != INVALID_HANDLE_VALUE) CloseHandle(output);
    }
    std::string Output() const { return ReadText(path); }
    bool WaitForOutput(const std::string& text) const {
        for (DWORD waited = 0; Output().find(text) == std::string::npos; waited += kPollMs) {
            if (waited >= kStartTimeoutMs) return false;
            Sleep(kPollMs);
        }
        return true;
    }
    bool WaitForExit() const { return WaitForSingleObject(process.hProcess, kStartTimeoutMs) == WAIT_OBJECT_0; }

    BOOL started = FALSE;

private:
    std::wstring path;
    HANDLE output = INVALID_HANDLE_VALUE;
    PROCESS_INFORMATION process{};
};

struct LogLine {
    int64_t microseconds = 0;
    std::string text;
    bool Is(const char* call) const { return text.compare(0, std::strlen(call) + 1, std::string(call) + " ") == 0; }
    bool Has(const char* part) const { return text.find(part) != std::string::npos; }
    long Magnitude() const {
        const size_t at = text.find("magnitude=");
        return at == std::string::npos ? 0 : std::stol(text.substr(at + 10));
    }
};

std::vector<LogLine> ReadLog(const std::wstring& path) {
    std::vector<LogLine> lines;
    std::ifstream file(path.c_str());
    for (std::string line; std::getline(file, line);) {
        const size_t space = line.find(' ');
        if (space != std::string::npos) lines.push_back({std::stoll(line.substr(0, space)), line.substr(space + 1)});
    }
    return lines;
}

const LogLine* First(const std::vector<LogLine>& log, const char* call) {
    for (const LogLine& line : log) {
        if (line.Is(call)) return &line;
    }
    return nullptr;
}

TEST(WheelHarnessEndToEnd, SimulatorEngineAndVirtualWheelThroughALostInputBurst) {
    const std::wstring logPath = TempPath(L"veltor_e2e_virtualwheel.log");
    DeleteFileW(logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"SetParameters=INPUTLOST@4500+400");

    Program simulator(L"\"" + ProgramPath(VELTOR_SIMULATOR_EXE) + L"\" --seconds 60 --quiet",
                      TempPath(L"veltor_e2e_wheel_simulator.txt"));
    ASSERT_TRUE(simulator.started);
    Sleep(1500);  // the simulator publishes before the engine looks
    Program harness(L"\"" + ProgramPath(VELTOR_HARNESS_EXE) + L"\" --seconds 8 --device " + kVirtualWheelGuid,
                    TempPath(L"veltor_e2e_wheel_harness.txt"));
    ASSERT_TRUE(harness.started);
    ASSERT_TRUE(harness.WaitForExit()) << harness.Output();
    const std::string status = harness.Output();
    EXPECT_NE(status.find("on track"), std::string::npos) << status;
    const size_t failures = status.rfind("output failures ");
    ASSERT_NE(failures, std::string::npos) << status;
    EXPECT_GE(std::atoi(status.c_str() + failures + 16), 1) << status;
    EXPECT_NE(status.find("(0x8007001E)", failures), std::string::npos) << status;

    const std::vector<LogLine> log = ReadLog(logPath);
    const LogLine* cooperative = First(log, "SetCooperativeLevel");
    const LogLine* autocentre = First(log, "SetProperty");
    const LogLine* acquired = First(log, "Acquire");
    const LogLine* created = First(log, "CreateEffect");
    ASSERT_TRUE(cooperative && autocentre && acquired && created) << ReadText(logPath).substr(0, 2000);
    EXPECT_TRUE(cooperative->Has("flags=0x9"));
    EXPECT_TRUE(autocentre->Has("AUTOCENTER") && autocentre->Has("dwData=0"));
    EXPECT_GE(created->microseconds - acquired->microseconds, kWarmupMicroseconds);

    // Each pass's magnitude, failed or not, without the zeros of starting and reacquiring.
    std::vector<const LogLine*> passes;
    for (size_t i = 0; i < log.size(); ++i) {
        if (!log[i].Is("SetParameters")) continue;
        const bool starting = i + 1 < log.size() && log[i + 1].Is("Start");
        const bool reacquiring = i > 0 && log[i - 1].Is("Acquire");
        if (log[i].Magnitude() == 0 && (starting || reacquiring)) continue;
        passes.push_back(&log[i]);
    }
    ASSERT_GT(passes.size(), 1000u);
    const int64_t rampEnd = created->microseconds + kRampMicroseconds;
    std::vector<long> distinct;
    for (size_t i = 1; i < passes.size(); ++i) {
        const long step = std::labs(passes[i]->Magnitude() - passes[i - 1]->Magnitude());
        EXPECT_LE(step, passes[i]->microseconds < rampEnd ? 120 : 1200) << passes[i]->text;
        if (std::find(distinct.begin(), distinct.end(), passes[i]->Magnitude()) == distinct.end()) {
            distinct.push_back(passes[i]->Magnitude());
        }
    }
    EXPECT_GT(distinct.size(), 50u);  // the drive's changing force did reach the wheel

    size_t lastLost = log.size();
    for (size_t i = 0; i < log.size(); ++i) {
        if (log[i].Has("hr=0x8007001E")) lastLost = i;
    }
    ASSERT_LT(lastLost, log.size()) << "the burst of lost input never came";
    bool restarted = false;
    for (size_t i = lastLost; i < log.size(); ++i) restarted = restarted || (log[i].Is("Start") && log[i].Has("hr=0x00000000"));
    EXPECT_TRUE(restarted) << "the effect was not started again after the burst";
    EXPECT_GT(passes.back()->microseconds, log[lastLost].microseconds + 1000000);
}

}  // namespace
