// The product's wheel through DirectInput 8 under Wine, with the virtual wheel DLL in place of the
// system's: enumeration, the exclusive open, the effect after the warm-up, recovery from lost input.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "wheel/WheelDevice.h"
#include "wheel/WheelOutput.h"

namespace veltor {
namespace {

const wchar_t* kLogPath = L"wheel_directinput_tests.log";
const wchar_t* kFaultPath = L"wheel_directinput_tests.faults";

// The virtual wheel's call log, from where a test began.
class CallLog {
public:
    CallLog() { start = Size(); }
    std::vector<std::string> Lines(const std::string& call) const {
        std::ifstream file(kLogPath, std::ios::binary);
        file.seekg(start);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            const size_t space = line.find(' ');
            if (space != std::string::npos && line.compare(space + 1, call.size() + 1, call + " ") == 0) {
                lines.push_back(line.substr(space + 1));
            }
        }
        return lines;
    }
    std::vector<long> Magnitudes() const {
        std::vector<long> values;
        for (const std::string& line : Lines("SetParameters")) {
            if (line.find("hr=0x00000000") != std::string::npos) values.push_back(std::stol(Field(line, "magnitude")));
        }
        return values;
    }
    static std::string Field(const std::string& line, const std::string& key) {
        const size_t at = line.find(" " + key + "=");
        if (at == std::string::npos) return {};
        const size_t from = at + key.size() + 2;
        return line.substr(from, line.find(' ', from) - from);
    }

private:
    static std::streamoff Size() {
        std::ifstream file(kLogPath, std::ios::binary | std::ios::ate);
        return file ? static_cast<std::streamoff>(file.tellg()) : 0;
    }
    std::streamoff start = 0;
};

class WheelDirectInputTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        DeleteFileW(kLogPath);  // before the DLL opens it, so each run starts a fresh log
        SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", kLogPath);
    }
    void SetUp() override {
        SetEnvironmentVariableW(L"VIRTUALWHEEL_WHEELS", nullptr);
        SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", nullptr);
        SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULT_FILE", nullptr);
        DeleteFileW(kFaultPath);
        EnumerateWheels(wheels);
        ASSERT_FALSE(wheels.empty()) << "is the virtual wheel's dinput8.dll beside the test, WINEDLLOVERRIDES=dinput8=n?";
    }
    static void Sleep(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

    std::vector<WheelDevice> wheels;
    CallLog log;
};

TEST_F(WheelDirectInputTest, EnumerateWheels_ListsAttachedForceFeedbackWheelsInOrder) {
    ASSERT_EQ(wheels.size(), 1u);
    EXPECT_EQ(wheels[0].productName, L"Veltor Virtual Wheel");
    EXPECT_EQ(log.Lines("EnumDevices").back(), "EnumDevices class=4 flags=0x101 wheels=1");

    SetEnvironmentVariableW(L"VIRTUALWHEEL_WHEELS", L"2");
    EnumerateWheels(wheels);
    ASSERT_EQ(wheels.size(), 2u);
    EXPECT_EQ(wheels[1].productName, L"Veltor Virtual Wheel 2");
    EXPECT_NE(std::memcmp(wheels[0].instanceGuid.bytes, wheels[1].instanceGuid.bytes, 16), 0);
}

TEST_F(WheelDirectInputTest, Open_ExclusiveInTheBackgroundWithAutocentreOffAndTheEffectOnlyAfterWarmUp) {
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    const std::string format = log.Lines("SetDataFormat").at(0);
    EXPECT_EQ(CallLog::Field(format, "dwDataSize"), "80");
    EXPECT_EQ(CallLog::Field(format, "dwNumObjs"), "44");
    EXPECT_EQ(CallLog::Field(format, "dwFlags"), "0x1");  // absolute axes
    EXPECT_EQ(CallLog::Field(log.Lines("SetCooperativeLevel").at(0), "flags"), "0x9");
    EXPECT_EQ(log.Lines("SetProperty").at(0), "SetProperty AUTOCENTER dwSize=20 dwHeaderSize=16 dwObj=0 dwHow=0 dwData=0");
    EXPECT_EQ(log.Lines("SetEventNotification").at(0), "SetEventNotification event=set");
    EXPECT_EQ(CallLog::Field(log.Lines("Acquire").at(0), "hr"), "0x00000000");

    wheel.commandedForce.exchange(4000);
    wheel.outputEnabled.exchange(true);
    Sleep(900);
    EXPECT_TRUE(log.Lines("CreateEffect").empty());
    EXPECT_TRUE(log.Lines("SetParameters").empty());
    Sleep(900);
    const std::vector<std::string> created = log.Lines("CreateEffect");
    ASSERT_EQ(created.size(), 1u);
    EXPECT_EQ(created[0],
              "CreateEffect guid=ConstantForce dwSize=" + std::to_string(sizeof(void*) == 8 ? 80 : 56) + " dwFlags=0x12 dwDuration=0xFFFFFFFF dwSamplePeriod=0 "
              "dwGain=10000 dwTriggerButton=0xFFFFFFFF dwTriggerRepeatInterval=0 cAxes=1 axis0=0 direction0=0 "
              "lpEnvelope=null cbTypeSpecificParams=4 magnitude=0 dwStartDelay=0");
    EXPECT_EQ(log.Lines("Start").at(0), "Start iterations=1 flags=0x0 hr=0x00000000");
    EXPECT_EQ(CallLog::Field(log.Lines("SetParameters").at(0), "flags"), "0x40000100");
    const std::vector<long> sent = log.Magnitudes();
    ASSERT_GT(sent.size(), 10u);
    for (size_t i = 1; i < sent.size(); ++i) EXPECT_LE(std::abs(sent[i] - sent[i - 1]), 120) << "pass " << i;
    EXPECT_GT(sent.back(), 0);
    EXPECT_LT(sent.back(), 4000);  // still in the ramp

    wheel.Close();
    EXPECT_FALSE(log.Lines("Unacquire").empty());
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

TEST_F(WheelDirectInputTest, LostInput_IsCountedOnceASecondAndRecoveredFrom) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULT_FILE", kFaultPath);
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    wheel.commandedForce.exchange(2000);
    wheel.outputEnabled.exchange(true);
    Sleep(1500);
    ASSERT_FALSE(log.Magnitudes().empty());
    { std::ofstream(kFaultPath) << "SetParameters=INPUTLOST\n"; }
    Sleep(600);
    DeleteFileW(kFaultPath);
    Sleep(400);
    wheel.Close();

    EXPECT_EQ(wheel.errorCount.load(), 1u);  // one code, within one second
    EXPECT_EQ(static_cast<uint32_t>(wheel.lastError.load()), 0x8007001Eu);
    const std::vector<std::string> sent = log.Lines("SetParameters");
    const size_t failures = std::count_if(sent.begin(), sent.end(), [](const std::string& l) {
        return l.find("hr=0x8007001E") != std::string::npos;
    });
    EXPECT_GT(failures, 50u);
    EXPECT_GE(log.Lines("Unacquire").size(), 3u);  // spaced at 250 ms, plus the one of Close
    EXPECT_GE(log.Lines("Start").size(), 2u);      // the effect restarted after the burst
    EXPECT_GT(log.Magnitudes().back(), 0);
}

TEST_F(WheelDirectInputTest, FailedDeviceReads_ReacquireWithoutBeingReported) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"GetDeviceState=FAIL");
    SetEnvironmentVariableW(L"VIRTUALWHEEL_HAND", L"3.0,2.0");  // the driver turns the rim, so the event fires
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    wheel.dampingPercent.exchange(50);
    wheel.outputEnabled.exchange(true);
    Sleep(1800);
    wheel.Close();
    SetEnvironmentVariableW(L"VIRTUALWHEEL_HAND", nullptr);
    EXPECT_FALSE(log.Lines("GetDeviceState").empty());
    EXPECT_GE(log.Lines("Unacquire").size(), 2u);
    EXPECT_EQ(wheel.errorCount.load(), 0u);
}

TEST_F(WheelDirectInputTest, VanishedWheel_FailuresAreCountedAndEnumerationFindsNone) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"Vanish@1500");
    const DeviceGuid guid = wheels[0].instanceGuid;
    WheelOutput wheel;
    ASSERT_TRUE(wheel.Open(nullptr, &guid));
    wheel.commandedForce.exchange(2000);
    wheel.outputEnabled.exchange(true);
    Sleep(2300);
    EXPECT_GE(wheel.errorCount.load(), 2u);  // lost input and the failed reacquire, alternating
    wheel.Close();
    EXPECT_FALSE(log.Lines("Vanish").empty());
    EnumerateWheels(wheels);
    EXPECT_TRUE(wheels.empty());
    EXPECT_FALSE(wheel.Open(nullptr, &guid));
}

TEST_F(WheelDirectInputTest, Open_FailingAtAcquireStartsNoThreadAndALaterOpenWorks) {
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"Acquire=FAIL");
    WheelOutput wheel;
    EXPECT_FALSE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    EXPECT_EQ(CallLog::Field(log.Lines("Acquire").at(0), "hr"), "0x80004005");
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", nullptr);
    EXPECT_TRUE(wheel.Open(nullptr, &wheels[0].instanceGuid));
    wheel.Close();
}

TEST_F(WheelDirectInputTest, Open_FailsForAWheelThatIsNotThere) {
    WheelOutput wheel;
    DeviceGuid unknown;
    EXPECT_FALSE(wheel.Open(nullptr, &unknown));
    EXPECT_EQ(CallLog::Field(log.Lines("CreateDevice").at(0), "hr"), "0x80040154");
}

}  // namespace
}  // namespace veltor
