// The product's wheel through DirectInput 8 under Wine, with the virtual wheel DLL in place of the
// system's: enumeration, the exclusive open, the effect after the warm-up, a vanished wheel.
// Each test waits for what the log or the wheel shows, and times are the log's own.
#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "VirtualWheelLog_win32.h"
#include "wheel/WheelDevice.h"
#include "wheel/WheelOutput.h"

namespace veltor {
namespace {

using test::CountOf;
using test::LogLine;

const wchar_t* kLogPath = L"wheel_directinput_tests.log";
constexpr int64_t kWarmupMicroseconds = 1200000;

class WheelDirectInputTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        DeleteFileW(kLogPath);  // before the DLL opens it, so each run starts a fresh log
        SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", kLogPath);
    }
    void SetUp() override {
        SetEnvironmentVariableW(L"VIRTUALWHEEL_WHEELS", nullptr);
        SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", nullptr);
        from = test::ReadLog(kLogPath).size();
        EnumerateWheels(wheels);
        ASSERT_FALSE(wheels.empty()) << "is the virtual wheel's dinput8.dll beside the test, WINEDLLOVERRIDES=dinput8=n?";
    }
    std::vector<LogLine> Log() const { return test::ReadLog(kLogPath, from); }
    template <class Condition>
    bool WaitForLog(Condition holds) {
        return test::WaitForLog(kLogPath, from, holds, log);
    }

    size_t from = 0;
    std::vector<WheelDevice> wheels;
    std::vector<LogLine> log;
};

TEST_F(WheelDirectInputTest, EnumerateWheels_ListsAttachedForceFeedbackWheelsInOrder) {
    ASSERT_EQ(wheels.size(), 1u);
    EXPECT_EQ(wheels[0].productName, L"Veltor Virtual Wheel");
    EXPECT_EQ(Log().back().text, "EnumDevices class=4 flags=0x101 wheels=1");

    SetEnvironmentVariableW(L"VIRTUALWHEEL_WHEELS", L"2");
    EnumerateWheels(wheels);
    ASSERT_EQ(wheels.size(), 2u);
    EXPECT_EQ(wheels[1].productName, L"Veltor Virtual Wheel 2");
    EXPECT_NE(std::memcmp(wheels[0].instanceGuid.bytes, wheels[1].instanceGuid.bytes, 16), 0);
}

TEST_F(WheelDirectInputTest, Open_ExclusiveInTheBackgroundWithAutocentreOffAndTheEffectOnlyAfterWarmUp) {
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    wheel.commandedForce.exchange(4000);
    wheel.outputEnabled.exchange(true);
    ASSERT_TRUE(WaitForLog([](const auto& lines) { return CountOf(lines, "SetParameters") >= 20; }));
    wheel.Close();

    const LogLine* format = test::First(log, "SetDataFormat");
    const LogLine* acquired = test::First(log, "Acquire");
    const LogLine* created = test::First(log, "CreateEffect");
    ASSERT_TRUE(format && acquired && created);
    EXPECT_EQ(format->Field("dwDataSize"), "80");
    EXPECT_EQ(format->Field("dwNumObjs"), "44");
    EXPECT_EQ(format->Field("dwFlags"), "0x1");  // absolute axes
    EXPECT_EQ(test::First(log, "SetCooperativeLevel")->Field("flags"), "0x9");
    EXPECT_EQ(test::First(log, "SetProperty")->text,
              "SetProperty AUTOCENTER dwSize=20 dwHeaderSize=16 dwObj=0 dwHow=0 dwData=0");
    EXPECT_EQ(test::First(log, "SetEventNotification")->text, "SetEventNotification event=set");
    EXPECT_EQ(acquired->Field("hr"), "0x00000000");
    EXPECT_GE(created->microseconds - acquired->microseconds, kWarmupMicroseconds);
    EXPECT_EQ(created->text,
              "CreateEffect guid=ConstantForce dwSize=" + std::to_string(sizeof(void*) == 8 ? 80 : 56) +
                  " dwFlags=0x12 dwDuration=0xFFFFFFFF dwSamplePeriod=0 dwGain=10000 dwTriggerButton=0xFFFFFFFF "
                  "dwTriggerRepeatInterval=0 cAxes=1 axis0=0 direction0=0 lpEnvelope=null cbTypeSpecificParams=4 "
                  "magnitude=0 dwStartDelay=0");
    EXPECT_EQ(test::First(log, "Start")->text, "Start iterations=1 flags=0x0 hr=0x00000000");
    // The ramp: steps of at most 120 from zero, below half the force within its first second.
    long previous = 0;
    for (const LogLine& line : log) {
        if (!line.Is("SetParameters") || line.microseconds > created->microseconds + 1000000) continue;
        EXPECT_EQ(line.Field("flags"), "0x40000100");
        EXPECT_LE(std::labs(line.Magnitude() - previous), 120) << line.text;
        EXPECT_LT(line.Magnitude(), 2300) << line.text;
        previous = line.Magnitude();
    }
    EXPECT_GT(CountOf(Log(), "Unacquire"), 0u);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

TEST_F(WheelDirectInputTest, VanishedWheel_FailuresAreCountedAndEnumerationFindsNone) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"Vanish@1500");
    const DeviceGuid guid = wheels[0].instanceGuid;
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &guid));
    wheel.commandedForce.exchange(2000);
    wheel.outputEnabled.exchange(true);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (wheel.errorCount.load() < 2 && std::chrono::steady_clock::now() < deadline) Sleep(20);
    EXPECT_GE(wheel.errorCount.load(), 2u);  // lost input and the failed reacquire, alternating
    wheel.Close();
    EXPECT_EQ(CountOf(Log(), "Vanish"), 1u);
    EnumerateWheels(wheels);
    EXPECT_TRUE(wheels.empty());
    EXPECT_FALSE(wheel.Open(nullptr, &guid));
}

TEST_F(WheelDirectInputTest, Open_FailsAtAcquireOrForAnUnknownWheelAndALaterOpenWorks) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"Acquire=FAIL");
    WheelOutput wheel;
    EXPECT_FALSE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    EXPECT_EQ(test::First(Log(), "Acquire")->Field("hr"), "0x80004005");
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", nullptr);
    const DeviceGuid unknown;
    EXPECT_FALSE(wheel.Open(nullptr, &unknown));
    const std::vector<LogLine> lines = Log();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().text, "CreateDevice wheel=-1 hr=0x80040154");
    EXPECT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    wheel.Close();
}

}  // namespace
}  // namespace veltor
