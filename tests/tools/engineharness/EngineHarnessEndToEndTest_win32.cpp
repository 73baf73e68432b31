// The product as it runs for real, in three pieces under Wine: simulator.exe playing its synthetic drive,
// the engine harness with the product's wheel over DirectInput 8, and the virtual wheel DLL beside the
// harness. The wheel is found and opened as a user's would be. The engine follows the session while the
// simulator leaves for two seconds (its named objects live on in the engine's handles), freezes on track
// for two more, and changes its identity; then the wheel loses input for a while. Each time the force is
// released and comes back, and the wheel recovers from the lost input.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "ChildProcess_win32.h"
#include "VirtualWheelLog_win32.h"

namespace veltor::test {
namespace {

constexpr int64_t kSecond = 1000000;  // log microseconds
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

TEST(EngineHarnessEndToEnd, TheEngineFollowsTheSimulatorAndTheWheelReleasesAndRecoversTheForce) {
    const std::wstring logPath = TempPath(L"veltor_e2e_virtualwheel.log");
    const std::wstring faultPath = TempPath(L"veltor_e2e_virtualwheel.faults");
    const std::wstring stopPath = TempPath(L"veltor_e2e_wheel_stop");
    for (const std::wstring& path : {logPath, faultPath, stopPath}) DeleteFileW(path.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULT_FILE", faultPath.c_str());

    // The harness looks for the simulator first, so the simulator's clock starts with the engine there: on
    // track from 3 s, away from 5 s to 7 s, frozen from 10 s to 12 s, another driver from 14 s. The
    // session's user id differs from the block's, so the name is not known; the wheelbase mode sets the
    // suppression from the force strength.
    Process harness(ProgramPath(VELTOR_HARNESS_EXE),
                    L"--seconds 0 --stop-file \"" + stopPath + L"\" SimucubeMode=1 ForceStrength=40",
                    TempPath(L"veltor_e2e_wheel_harness.txt"));
    ASSERT_TRUE(harness.started);
    ASSERT_TRUE(harness.WaitForOutput({"status: disconnected"})) << harness.Output();
    Process simulator(ProgramPath(VELTOR_SIMULATOR_EXE),
                      L"--seconds 120 --identity differing-ids --disappear-at 5 --absent-for 2 --freeze-at 10 "
                      L"--freeze-for 2 --swap-identity-at 14",
                      TempPath(L"veltor_e2e_wheel_simulator.txt"));
    ASSERT_TRUE(simulator.started);
    ASSERT_TRUE(harness.WaitForOutput(
        {"status: connected, on track, car bmwm4gt3, driver \"Synthetic Driver\", user id 424242, name known 0",
         "status: disconnected", "status: connected", "stalls 2",
         "car porsche992rgt3, driver \"Second Driver\", user id 515151"}))
        << harness.Output() << simulator.Output();

    // The force back on the wheel for a while after the freeze; then lost input while it plays, until the
    // wheel has failed for a while, and the effect playing again once the input is back.
    std::vector<LogLine> log;
    ASSERT_TRUE(WaitForLog(logPath, [](const auto& lines) {
        const auto stretches = Stretches(lines);
        return stretches.size() >= 3 && stretches[2].size() >= 300;
    }, log)) << Stretches(log).size() << " stretches";
    std::ofstream(faultPath.c_str()) << "SetParameters=INPUTLOST\n";
    const auto failedForAWhile = [](const auto& lines) { return CountOf(lines, "SetParameters", kInputLost) >= 50; };
    ASSERT_TRUE(WaitForLog(logPath, failedForAWhile, log));
    DeleteFileW(faultPath.c_str());
    ASSERT_TRUE(WaitForLog(logPath, [](const auto& lines) {
        size_t lastLost = 0;
        for (size_t i = 0; i < lines.size(); ++i) lastLost = lines[i].Has(kInputLost) ? i : lastLost;
        size_t restarted = 0, played = 0;
        for (size_t i = lastLost; i < lines.size(); ++i) {
            restarted += lines[i].Is("Start") && lines[i].Has("hr=0x00000000") ? 1 : 0;
            played += restarted > 0 && lines[i].Is("SetParameters") && lines[i].Magnitude() != 0 ? 1 : 0;
        }
        return played >= 100;
    }, log)) << "the effect did not play again after the lost input";

    // The stop: 2000 / 40 = 50 Nm as 16.16 went out once for the whole connection, and 40 Nm comes back.
    CloseHandle(CreateFileW(stopPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_EQ(harness.WaitForExit(), 0) << harness.Output();
    EXPECT_TRUE(simulator.WaitForOutput({"maximum force 2621440"}, 10000)) << simulator.Output();
    const std::string status = harness.Output();
    EXPECT_EQ(LastValue(status, "stalls "), 2) << status;
    EXPECT_GE(LastValue(status, "output failures "), 1) << status;
    EXPECT_NE(status.find("(0x8007001E)", status.rfind("output failures ")), std::string::npos) << status;
    const std::string sim = simulator.Output();
    const size_t suppressed = sim.find("broadcast: maximum force 3276800");
    ASSERT_NE(suppressed, std::string::npos) << sim;
    EXPECT_EQ(sim.find("broadcast: maximum force 3276800", suppressed + 1), std::string::npos) << sim;

    // The first force-feedback wheel attached, opened exclusive in the background with self-centring off,
    // and one constant-force effect on the one axis, changed by its type-specific parameters alone.
    log = ReadLog(logPath);
    EXPECT_EQ(First(log, "EnumDevices")->text, "EnumDevices class=4 flags=0x101 wheels=1");
    EXPECT_TRUE(First(log, "SetDataFormat")->Has(" dwFlags=0x1 dwDataSize=80 dwNumObjs=44"));  // absolute axes
    EXPECT_TRUE(First(log, "SetCooperativeLevel")->Has(" flags=0x9 "));
    EXPECT_EQ(First(log, "SetProperty")->text,
              "SetProperty AUTOCENTER dwSize=20 dwHeaderSize=16 dwObj=0 dwHow=0 dwData=0");
    EXPECT_EQ(First(log, "SetEventNotification")->text, "SetEventNotification event=set");
    EXPECT_EQ(First(log, "CreateEffect")->text,
              "CreateEffect guid=ConstantForce dwSize=80 dwFlags=0x12 dwDuration=0xFFFFFFFF dwSamplePeriod=0 "
              "dwGain=10000 dwTriggerButton=0xFFFFFFFF dwTriggerRepeatInterval=0 cAxes=1 axis0=0 direction0=0 "
              "lpEnvelope=null cbTypeSpecificParams=4 magnitude=0 dwStartDelay=0");
    EXPECT_EQ(First(log, "Start")->text, "Start iterations=1 flags=0x0 hr=0x00000000");
    EXPECT_EQ(CountOf(log, "SetParameters", "flags=0x40000100"), CountOf(log, "SetParameters"));

    // The drive's changing force reaches the wheel. The warm-up and the slew limits are the wheel output's
    // host tests', on a stepped clock.
    std::set<long> distinct;
    for (const LogLine& line : log) {
        if (line.Is("SetParameters")) distinct.insert(line.Magnitude());
    }
    EXPECT_GT(distinct.size(), 50u);
}

}  // namespace
}  // namespace veltor::test
