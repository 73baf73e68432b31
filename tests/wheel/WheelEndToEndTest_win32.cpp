// The whole road under Wine: a simulated drive publishes telemetry, the real engine thread turns it into
// forces, the product's wheel plays them on the virtual wheel DLL, which loses input for a while.
#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "SimulatedDrive_win32.h"
#include "VirtualWheelLog_win32.h"
#include "engine/EnginePlatform.h"
#include "engine/EngineLoop.h"
#include "wheel/WheelDevice.h"

namespace veltor {
namespace {

const wchar_t* kLogPath = L"wheel_e2e_tests.log";
using test::LogLine;
constexpr int kRunMilliseconds = 7000;
constexpr size_t kMaxStores = 1 << 16;

// Every store of the engine thread, with its time; read after the engine has stopped.
struct Store {
    int64_t microseconds;
    int32_t value;
};
std::vector<Store> gStores(kMaxStores);
size_t gStoreCount = 0;

struct RecordingPlatform : EnginePlatform {
    static void ForceStored(int32_t, int32_t value) {
        if (gStoreCount < kMaxStores) gStores[gStoreCount++] = {test::CounterMicroseconds(), value};
    }
};

// Whether the engine stored `value` shortly before `microseconds` (or just after: the store's time stamp is
// taken after the store itself).
bool StoredAround(int64_t microseconds, long value) {
    constexpr int64_t kBefore = 20000;
    constexpr int64_t kAfter = 2000;
    for (size_t i = 0; i < gStoreCount && gStores[i].microseconds <= microseconds + kAfter; ++i) {
        if (gStores[i].microseconds >= microseconds - kBefore && gStores[i].value == value) return true;
    }
    return false;
}

TEST(WheelEndToEnd, DriveReachesTheWheelThroughWarmUpRampAndALostInputBurst) {
    DeleteFileW(kLogPath);
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", kLogPath);
    SetEnvironmentVariableW(L"VIRTUALWHEEL_FAULTS", L"SetParameters=INPUTLOST@4500+400");
    std::vector<WheelDevice> wheels;
    EnumerateWheels(wheels);
    ASSERT_EQ(wheels.size(), 1u) << "is the virtual wheel's dinput8.dll beside the test, WINEDLLOVERRIDES=dinput8=n?";

    test::SimulatedDrive drive(60 * 20);
    ASSERT_TRUE(drive.Start());
    FfbEngine engine;
    engine.StartWith<RecordingPlatform>(EngineSettings{}, nullptr, wheels[0].instanceGuid);
    std::this_thread::sleep_for(std::chrono::milliseconds(kRunMilliseconds));
    const EngineStatus status = engine.CopyStatus();
    engine.Stop();
    drive.Stop();

    EXPECT_TRUE(status.onTrack);
    EXPECT_GE(status.outputFailureCount, 1u);
    EXPECT_EQ(status.outputFailureCode, 0x8007001Eu);

    const std::vector<LogLine> log = test::ReadLog(kLogPath);
    std::vector<const LogLine*> passes;
    const LogLine* created = nullptr;
    ASSERT_NO_FATAL_FAILURE(test::ExpectDriveThroughLostInput(log, passes, created));
    ASSERT_GT(gStoreCount, 0u);
    EXPECT_GE(created->microseconds - gStores[0].microseconds, test::kWarmupMicroseconds - 10000);
    // After the ramp each pass sends what the engine stored just before; a pass may read the force just
    // before the engine's next store lands: allow a few.
    size_t followed = 0;
    size_t afterRamp = 0;
    for (const LogLine* pass : passes) {
        if (pass->microseconds > created->microseconds + test::kRampMicroseconds + 50000) {
            ++afterRamp;
            if (StoredAround(pass->microseconds, pass->Magnitude())) ++followed;
        }
    }
    EXPECT_GT(afterRamp, 1000u);
    EXPECT_GE(followed * 100, afterRamp * 95);
}

}  // namespace
}  // namespace veltor
