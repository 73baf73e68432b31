// The product as it runs for real, in three pieces under Wine: simulator.exe playing its synthetic drive,
// the engine harness with the product's wheel, and the virtual wheel DLL beside the harness, which loses
// input for a while.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "ChildProcess_win32.h"
#include "VirtualWheelLog_win32.h"

namespace veltor::test {
namespace {

// The virtual wheel's first instance GUID, as the harness takes it: the 16 bytes in memory order.
const wchar_t* kVirtualWheelGuid = L"544C455649574548454C000000000001";

TEST(WheelHarnessEndToEnd, SimulatorEngineAndVirtualWheelThroughALostInputBurst) {
    const std::wstring logPath = TempPath(L"veltor_e2e_virtualwheel.log");
    DeleteFileW(logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", logPath.c_str());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"SetParameters=INPUTLOST@4500+400");

    Child simulator(L"\"" + ProgramPath(VELTOR_SIMULATOR_EXE) + L"\" --seconds 60 --quiet",
                    TempPath(L"veltor_e2e_wheel_simulator.txt"));
    ASSERT_TRUE(simulator.started);
    Sleep(1500);  // the simulator publishes before the engine looks
    Child harness(L"\"" + ProgramPath(VELTOR_HARNESS_EXE) + L"\" --seconds 8 --device " + kVirtualWheelGuid,
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
    std::vector<const LogLine*> passes;
    const LogLine* created = nullptr;
    ASSERT_NO_FATAL_FAILURE(ExpectDriveThroughLostInput(log, passes, created));
    std::vector<long> distinct;
    for (const LogLine* pass : passes) {
        if (std::find(distinct.begin(), distinct.end(), pass->Magnitude()) == distinct.end()) {
            distinct.push_back(pass->Magnitude());
        }
    }
    EXPECT_GT(distinct.size(), 50u);  // the drive's changing force did reach the wheel
}

}  // namespace
}  // namespace veltor::test
