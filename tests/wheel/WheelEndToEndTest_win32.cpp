// The whole road under Wine: a simulated drive publishes telemetry, the real engine thread turns it into
// forces, the product's wheel plays them on the virtual wheel DLL, which loses input for a while.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "SimulatedDrive_win32.h"
#include "engine/EnginePlatform.h"
#include "engine/FfbEngine.h"
#include "wheel/WheelDevice.h"

namespace veltor {
namespace {

const wchar_t* kLogPath = L"wheel_e2e_tests.log";
constexpr int kRunMilliseconds = 7000;
constexpr size_t kMaxStores = 1 << 16;
constexpr int64_t kWarmupMicroseconds = 1200000;
constexpr int64_t kRampMicroseconds = 1800000;

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

struct LogLine {
    int64_t microseconds = 0;
    std::string call;
    std::string text;
};

std::vector<LogLine> ReadLog() {
    std::vector<LogLine> lines;
    std::ifstream file(kLogPath);
    for (std::string line; std::getline(file, line);) {
        LogLine entry;
        const size_t space = line.find(' ');
        if (space == std::string::npos) continue;
        entry.microseconds = std::stoll(line.substr(0, space));
        entry.text = line.substr(space + 1);
        entry.call = entry.text.substr(0, entry.text.find(' '));
        lines.push_back(entry);
    }
    return lines;
}

bool Has(const LogLine& line, const std::string& part) { return line.text.find(part) != std::string::npos; }

long Magnitude(const LogLine& line) {
    const size_t at = line.text.find("magnitude=");
    return at == std::string::npos ? 0 : std::stol(line.text.substr(at + 10));
}

const LogLine* First(const std::vector<LogLine>& log, const std::string& call) {
    for (const LogLine& line : log) {
        if (line.call == call) return &line;
    }
    return nullptr;
}

// The magnitudes each pass sent with the force, failed or not, leaving out the zeros of starting and
// reacquiring.
std::vector<const LogLine*> ForcePasses(const std::vector<LogLine>& log) {
    std::vector<const LogLine*> passes;
    for (size_t i = 0; i < log.size(); ++i) {
        if (log[i].call != "SetParameters") continue;
        const bool starting = i + 1 < log.size() && log[i + 1].call == "Start";
        const bool reacquiring = i > 0 && log[i - 1].call == "Acquire";
        if (Magnitude(log[i]) == 0 && (starting || reacquiring)) continue;
        passes.push_back(&log[i]);
    }
    return passes;
}

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

    const std::vector<LogLine> log = ReadLog();
    const LogLine* cooperative = First(log, "SetCooperativeLevel");
    const LogLine* autocentre = First(log, "SetProperty");
    const LogLine* acquired = First(log, "Acquire");
    const LogLine* created = First(log, "CreateEffect");
    ASSERT_TRUE(cooperative && autocentre && acquired && created);
    EXPECT_TRUE(Has(*cooperative, "flags=0x9"));
    EXPECT_TRUE(Has(*autocentre, "AUTOCENTER") && Has(*autocentre, "dwData=0"));
    EXPECT_GE(created->microseconds - acquired->microseconds, kWarmupMicroseconds);
    ASSERT_GT(gStoreCount, 0u);
    EXPECT_GE(created->microseconds - gStores[0].microseconds, kWarmupMicroseconds - 10000);

    const std::vector<const LogLine*> passes = ForcePasses(log);
    ASSERT_GT(passes.size(), 1000u);
    const int64_t rampEnd = created->microseconds + kRampMicroseconds;
    size_t followed = 0;
    size_t afterRamp = 0;
    for (size_t i = 1; i < passes.size(); ++i) {
        const long step = std::labs(Magnitude(*passes[i]) - Magnitude(*passes[i - 1]));
        EXPECT_LE(step, passes[i]->microseconds < rampEnd ? 120 : 1200) << passes[i]->text;
        if (passes[i]->microseconds > rampEnd + 50000) {
            ++afterRamp;
            if (StoredAround(passes[i]->microseconds, Magnitude(*passes[i]))) ++followed;
        }
    }
    // A pass may read the force just before the engine's next store lands: allow a few.
    EXPECT_GT(afterRamp, 1000u);
    EXPECT_GE(followed * 100, afterRamp * 95);

    const auto lastLost = std::find_if(log.rbegin(), log.rend(), [](const LogLine& l) { return Has(l, "hr=0x8007001E"); });
    ASSERT_NE(lastLost, log.rend()) << "the burst of lost input never came";
    const auto recovered = std::find_if(log.rbegin(), lastLost, [](const LogLine& l) { return l.call == "Start"; });
    EXPECT_NE(recovered, lastLost) << "the effect was not started again after the burst";
    EXPECT_GT(passes.back()->microseconds, lastLost->microseconds + 1000000);
}

}  // namespace
}  // namespace veltor
