// The product as it runs for real, in three pieces under Wine: simulator.exe playing its synthetic drive,
// the engine harness with the product's wheel, and the virtual wheel DLL beside the harness. The simulator
// freezes on track for two seconds, then the wheel loses input for a while: the force is released and comes
// back through the warm-up and the ramp, and the wheel recovers from the lost input.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "ChildProcess_win32.h"
#include "VirtualWheelLog_win32.h"

namespace veltor::test {
namespace {

// The virtual wheel's first instance GUID, as the harness takes it: the 16 bytes in memory order.
const wchar_t* kVirtualWheelGuid = L"544C455649574548454C000000000001";
constexpr int64_t kSecond = 1000000;  // log microseconds
constexpr int64_t kWarmup = 1200000;
const char* kInputLost = "hr=0x8007001E";

// The output thread's passes, split where output was off for a second or more. The zero magnitudes with
// which the effect is started or reacquired are left out: they are no step of the force.
std::vector<std::vector<const LogLine*>> Stretches(const std::vector<LogLine>& log) {
    std::vector<std::vector<const LogLine*>> stretches;
    int64_t last = 0;
    for (size_t i = 0; i < log.size(); ++i) {
        if (!log[i].Is("SetParameters")) continue;
        const bool starting = i + 1 < log.size() && log[i + 1].Is("Start");
        const bool reacquiring = i > 0 && log[i - 1].Is("Acquire");
        if (log[i].Magnitude() == 0 && (starting || reacquiring)) continue;
        if (stretches.empty() || log[i].microseconds - last >= kSecond) stretches.emplace_back();
        stretches.back().push_back(&log[i]);
        last = log[i].microseconds;
    }
    return stretches;
}

// The last status value after `key` in the harness's output ("stalls 1"), or -1.
long LastValue(const std::string& output, const std::string& key) {
    const size_t at = output.rfind(key);
    return at == std::string::npos ? -1 : std::atol(output.c_str() + at + key.size());
}

TEST(WheelHarnessEndToEnd, AStalledSimulatorAndLostInputBothReleaseAndRecover) {
    const std::wstring logPath = TempPath(L"veltor_e2e_virtualwheel.log");
    const std::wstring faultPath = TempPath(L"veltor_e2e_virtualwheel.faults");
    const std::wstring stopPath = TempPath(L"veltor_e2e_wheel_stop");
    for (const std::wstring& path : {logPath, faultPath, stopPath}) DeleteFileW(path.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULT_FILE", faultPath.c_str());

    // The harness looks for the simulator first, so the simulator's clock starts with the engine there:
    // on track from 3 s, frozen from 10 s to 12 s.
    Child harness(L"\"" + ProgramPath(VELTOR_HARNESS_EXE) + L"\" --seconds 0 --stop-file \"" + stopPath +
                      L"\" --device " + kVirtualWheelGuid,
                  TempPath(L"veltor_e2e_wheel_harness.txt"));
    ASSERT_TRUE(harness.started);
    ASSERT_TRUE(harness.WaitForOutput("status: disconnected")) << harness.Output();
    Child simulator(L"\"" + ProgramPath(VELTOR_SIMULATOR_EXE) + L"\" --seconds 120 --freeze-at 10 --freeze-for 2",
                    TempPath(L"veltor_e2e_wheel_simulator.txt"));
    ASSERT_TRUE(simulator.started);

    // The stall, then the force back on the wheel for a while after it.
    ASSERT_TRUE(harness.WaitForOutput({"on track", "stalls 1"})) << harness.Output() << simulator.Output();
    std::vector<LogLine> log;
    ASSERT_TRUE(WaitForLog(logPath, 0, [](const auto& lines) {
        const auto stretches = Stretches(lines);
        return stretches.size() >= 2 && stretches[1].size() >= 300;
    }, log)) << Stretches(log).size() << " stretches";

    // Lost input while the force plays, until the wheel has failed for a while.
    std::ofstream(faultPath.c_str()) << "SetParameters=INPUTLOST\n";
    ASSERT_TRUE(WaitForLog(logPath, 0, [](const auto& lines) { return CountOf(lines, "SetParameters", kInputLost) >= 50; },
                           log));
    DeleteFileW(faultPath.c_str());
    ASSERT_TRUE(WaitForLog(logPath, 0, [](const auto& lines) {
        size_t lastLost = 0;
        for (size_t i = 0; i < lines.size(); ++i) lastLost = lines[i].Has(kInputLost) ? i : lastLost;
        size_t restarted = 0, played = 0;
        for (size_t i = lastLost; i < lines.size(); ++i) {
            restarted += lines[i].Is("Start") && lines[i].Has("hr=0x00000000") ? 1 : 0;
            played += restarted > 0 && lines[i].Is("SetParameters") && lines[i].Magnitude() != 0 ? 1 : 0;
        }
        return played >= 100;
    }, log)) << "the effect did not play again after the lost input";

    CloseHandle(CreateFileW(stopPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(harness.WaitForExit()) << harness.Output();
    const std::string status = harness.Output();
    EXPECT_EQ(LastValue(status, "stalls "), 1) << status;
    EXPECT_GE(LastValue(status, "output failures "), 1) << status;
    EXPECT_NE(status.find("(0x8007001E)", status.rfind("output failures ")), std::string::npos) << status;

    // Warm-up after the open and again after the stall; the ramp's and the running slew limits in each
    // stretch; the drive's changing force reaches the wheel.
    log = ReadLog(logPath);
    const auto stretches = Stretches(log);
    ASSERT_GE(stretches.size(), 2u);
    EXPECT_GE(First(log, "CreateEffect")->microseconds - First(log, "Acquire")->microseconds, kWarmup);
    int64_t stopped = 0;
    for (const LogLine& line : log) {
        if (&line == stretches[1].front()) break;
        if (line.Is("Stop")) stopped = line.microseconds;
    }
    EXPECT_GE(stretches[1].front()->microseconds - stopped, kWarmup);
    std::set<long> distinct;
    for (const auto& stretch : stretches) {
        for (size_t i = 1; i < stretch.size(); ++i) {
            const bool ramping = stretch[i]->microseconds < stretch.front()->microseconds + kSecond;
            EXPECT_LE(std::labs(stretch[i]->Magnitude() - stretch[i - 1]->Magnitude()), ramping ? 120 : 1200)
                << stretch[i]->text;
            distinct.insert(stretch[i]->Magnitude());
        }
    }
    EXPECT_GT(distinct.size(), 50u);
}

}  // namespace
}  // namespace veltor::test
