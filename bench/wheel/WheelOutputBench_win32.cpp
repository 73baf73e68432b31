// The wheel's side of the force path under Wine: a simulated 60 Hz drive, the real engine thread, the
// product's wheel and the virtual wheel DLL, first on an idle machine and then loaded with as many spinning
// threads of normal priority as the machine has hardware threads. Prints the latency from the simulator
// setting its event to the virtual wheel receiving a SetParameters that carries that tick's first output
// (p50, p99, max, and the ticks whose first output no pass carried), the output passes per second, the
// engine pacer's learned margin and the CPU time per second of the engine and output threads. Each condition
// first measures the platform's floor, a bare thread woken by the simulator's event with no engine, and
// prints the latency as a ratio to it.
#include <windows.h>
#include <tlhelp32.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "SimulatedDrive_win32.h"
#include "SpinningLoad.h"
#include "engine/EnginePlatform.h"
#include "engine/EngineLoop.h"
#include "wheel/WheelDevice.h"

namespace {

using namespace veltor;

// The wheel's call log is the benchmark's instrument, written and flushed inside every SetParameters on the
// output thread it measures: in memory where Wine shows the host's /dev/shm, so that a disk's write-back
// stalls are not counted against the thread; in the working folder elsewhere.
const wchar_t* LogPath() {
    static const wchar_t* path = [] {
        const DWORD shm = GetFileAttributesW(L"Z:\\dev\\shm");
        return shm != INVALID_FILE_ATTRIBUTES && (shm & FILE_ATTRIBUTE_DIRECTORY) != 0
                   ? L"Z:\\dev\\shm\\bench_wheel_output.log"
                   : L"bench_wheel_output.log";
    }();
    return path;
}
constexpr size_t kMaxStores = 1 << 20;
constexpr int64_t kRampEndAfterEffectMicroseconds = 1800000 + 100000;
constexpr int kSettleMilliseconds = 3500;

// Engine thread writes, the main thread reads after Stop.
struct Store {
    int64_t microseconds;
    int32_t value;
    int32_t outputIndex;
};
std::vector<Store> gStores(kMaxStores);
size_t gStoreCount = 0;

std::vector<int64_t> gMargins;  // ns, the engine pacer's margin after each wait while measuring
std::atomic<bool> gMeasuring{false};
std::atomic<DWORD> gEngineThreadId{0};

// The product's pacer, watched for the margin it learned.
struct BenchPacer {
    void WaitUntil(int64_t deadline) {
        pacer.WaitUntil(deadline);
        if (gMeasuring.load(std::memory_order_relaxed) && gMargins.size() < gMargins.capacity()) {
            gMargins.push_back(pacer.Margin());
        }
    }
    Pacer pacer;
};

struct BenchPlatform : EnginePlatform {
    using Pacer = BenchPacer;
    static void ForceStored(int32_t outputIndex, int32_t value) {
        if (gEngineThreadId.load(std::memory_order_relaxed) == 0) gEngineThreadId.store(GetCurrentThreadId());
        if (gStoreCount < kMaxStores) gStores[gStoreCount++] = {test::CounterMicroseconds(), value, outputIndex};
    }
};

struct SetParametersCall {
    int64_t microseconds;
    long magnitude;
};

// The successful SetParameters of the log from `since` on, and when the effect was created after it.
std::vector<SetParametersCall> ReadLog(int64_t since, int64_t& effectCreated) {
    std::vector<SetParametersCall> calls;
    std::ifstream file(LogPath());
    for (std::string line; std::getline(file, line);) {
        const size_t space = line.find(' ');
        if (space == std::string::npos) continue;
        const int64_t at = std::stoll(line.substr(0, space));
        if (at < since) continue;
        if (line.compare(space + 1, 13, "CreateEffect ") == 0 && effectCreated == 0) effectCreated = at;
        if (line.compare(space + 1, 14, "SetParameters ") != 0 || line.find("hr=0x00000000") == std::string::npos) continue;
        calls.push_back({at, std::stol(line.substr(line.find("magnitude=") + 10))});
    }
    return calls;
}

std::set<DWORD> ProcessThreads() {
    std::set<DWORD> ids;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return ids;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ids.insert(entry.th32ThreadID);
    }
    CloseHandle(snapshot);
    return ids;
}

// The thread that opening the wheel started at the highest priority: the output thread.
HANDLE FindOutputThread(const std::set<DWORD>& before) {
    for (DWORD id : ProcessThreads()) {
        if (before.count(id) != 0) continue;
        HANDLE thread = OpenThread(THREAD_QUERY_INFORMATION, FALSE, id);
        if (thread == nullptr) continue;
        if (GetThreadPriority(thread) == THREAD_PRIORITY_HIGHEST) return thread;
        CloseHandle(thread);
    }
    return nullptr;
}

int64_t ThreadCpuMicroseconds(HANDLE thread) {
    FILETIME created, exited, kernel, user;
    if (thread == nullptr || !GetThreadTimes(thread, &created, &exited, &kernel, &user)) return 0;
    auto toInt = [](FILETIME t) { return (static_cast<int64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime; };
    return (toInt(kernel) + toInt(user)) / 10;
}

int64_t Percentile(std::vector<int64_t> values, double fraction) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(fraction * static_cast<double>(values.size() - 1))];
}

// For each tick's first output (a value that differs from the one before it), the first SetParameters at or
// after the store that carries it, measured from the event of the tick; a value overtaken by the next store
// before any pass sent it is missed.
void MeasureLatency(const test::SimulatedDrive& drive, const std::vector<SetParametersCall>& calls, int64_t from,
                    std::vector<int64_t>& latencies, size_t& missed) {
    size_t call = 0;
    int32_t tick = 1;
    for (size_t i = 1; i + 1 < gStoreCount; ++i) {
        const Store& store = gStores[i];
        while (drive.EventMicroseconds(tick + 1) != 0 && drive.EventMicroseconds(tick + 1) <= store.microseconds) ++tick;
        if (store.outputIndex != 0 || store.microseconds < from || store.value == gStores[i - 1].value) continue;
        // The store is stamped just after it lands: a pass may carry it a few microseconds earlier.
        while (call < calls.size() && calls[call].microseconds < store.microseconds - 50) ++call;
        size_t c = call;
        while (c < calls.size() && calls[c].magnitude != store.value && calls[c].microseconds < gStores[i + 1].microseconds) ++c;
        if (c < calls.size() && calls[c].magnitude == store.value) {
            latencies.push_back(calls[c].microseconds - drive.EventMicroseconds(tick));
        } else {
            ++missed;
        }
    }
}

}  // namespace

// Event set -> wake-up of a thread at the engine's priority that does nothing else (us).
std::vector<int64_t> MeasureFloor(int seconds) {
    test::SimulatedDrive drive(static_cast<size_t>(seconds + 2) * 60);
    std::vector<int64_t> wakes;
    if (!drive.Start()) return wakes;
    HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, L"Local\\IRSDKDataValidEvent");
    wakes.reserve(static_cast<size_t>(seconds) * 70);
    std::thread waiter([&] {
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST);
        const int64_t end = test::CounterMicroseconds() + seconds * 1000000LL;
        while (test::CounterMicroseconds() < end) {
            if (WaitForSingleObject(event, 100) != WAIT_OBJECT_0) continue;
            const int64_t now = test::CounterMicroseconds();
            if (wakes.size() < wakes.capacity()) wakes.push_back(now - drive.EventMicroseconds(drive.TickCount()));
        }
    });
    waiter.join();
    drive.Stop();
    if (event != nullptr) CloseHandle(event);
    return wakes;
}

double Ratio(int64_t value, int64_t floor) { return floor > 0 ? static_cast<double>(value) / static_cast<double>(floor) : 0.0; }

void PrintCpu(const char* name, HANDLE thread, int64_t before, int64_t after, double window) {
    if (thread == nullptr) {
        std::printf("    %s thread CPU time: thread not found\n", name);
        return;
    }
    const double msPerSecond = static_cast<double>(after - before) / 1000.0 / window;
    std::printf("    %s thread CPU time: %.1f ms per second (%.1f %%)\n", name, msPerSecond, msPerSecond / 10.0);
}

void RunCondition(const DeviceGuid& wheel, int mode, int seconds) {
    const std::vector<int64_t> floor = MeasureFloor(seconds);
    const int64_t floor50 = Percentile(floor, 0.50);
    const int64_t floor99 = Percentile(floor, 0.99);
    std::printf("  floor: event set -> bare wake-up, no engine: p50 %lld us, p99 %lld us, max %lld us (%zu ticks)\n",
                static_cast<long long>(floor50), static_cast<long long>(floor99),
                static_cast<long long>(Percentile(floor, 1.0)), floor.size());

    gStoreCount = 0;
    gMargins.clear();
    gMargins.reserve(static_cast<size_t>(seconds) * 60 * 12);
    gEngineThreadId.store(0);
    const int64_t since = test::CounterMicroseconds();
    FfbEngine engine;
    EngineSettings settings;
    settings.Mode = mode;
    engine.StartWith<BenchPlatform>(settings, nullptr, wheel);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // the engine looks for a simulator
    const std::set<DWORD> before = ProcessThreads();
    test::SimulatedDrive drive(static_cast<size_t>(seconds + 10) * 60);
    if (!drive.Start()) {
        std::fprintf(stderr, "Could not publish the simulated drive.\n");
        engine.Stop();
        return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(kSettleMilliseconds));
    HANDLE outputThread = FindOutputThread(before);
    HANDLE engineThread = OpenThread(THREAD_QUERY_INFORMATION, FALSE, gEngineThreadId.load());
    const int64_t outputBefore = ThreadCpuMicroseconds(outputThread);
    const int64_t engineBefore = ThreadCpuMicroseconds(engineThread);
    const int64_t wallBefore = test::CounterMicroseconds();
    gMeasuring.store(true);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    gMeasuring.store(false);
    const int64_t outputAfter = ThreadCpuMicroseconds(outputThread);
    const int64_t engineAfter = ThreadCpuMicroseconds(engineThread);
    const int64_t wallAfter = test::CounterMicroseconds();
    engine.Stop();
    drive.Stop();

    int64_t effectCreated = 0;
    const std::vector<SetParametersCall> calls = ReadLog(since, effectCreated);
    std::vector<int64_t> latencies;
    size_t missed = 0;
    MeasureLatency(drive, calls, std::max(effectCreated + kRampEndAfterEffectMicroseconds, wallBefore), latencies,
                   missed);
    const auto passes = std::count_if(calls.begin(), calls.end(), [&](const SetParametersCall& c) {
        return c.microseconds >= wallBefore && c.microseconds < wallAfter;
    });
    const double window = static_cast<double>(wallAfter - wallBefore) / 1e6;
    const int64_t p50 = Percentile(latencies, 0.50);
    const int64_t p99 = Percentile(latencies, 0.99);
    std::printf("  event set -> SetParameters with the tick's first output: p50 %lld us (%.1fx floor), p99 %lld us"
                " (%.1fx floor), max %lld us (%zu ticks, %zu not carried)\n",
                static_cast<long long>(p50), Ratio(p50, floor50), static_cast<long long>(p99), Ratio(p99, floor99),
                static_cast<long long>(Percentile(latencies, 1.0)), latencies.size(), missed);
    std::printf("  output passes per second: %.0f\n", static_cast<double>(passes) / window);
    std::printf("  engine pacer's learned margin: p50 %.1f us, p99 %.1f us\n",
                static_cast<double>(Percentile(gMargins, 0.50)) / 1000.0,
                static_cast<double>(Percentile(gMargins, 0.99)) / 1000.0);
    PrintCpu("engine", engineThread, engineBefore, engineAfter, window);
    PrintCpu("output", outputThread, outputBefore, outputAfter, window);
    if (outputThread != nullptr) CloseHandle(outputThread);
    if (engineThread != nullptr) CloseHandle(engineThread);
}

int main(int argc, char** argv) {
    int seconds = 20;
    int mode = 0;
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--seconds") == 0) seconds = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--mode") == 0) mode = std::atoi(argv[++i]) == 1 ? 1 : 0;
    }
    DeleteFileW(LogPath());
    SetEnvironmentVariableW(L"VIRTUALWHEEL_LOG", LogPath());
    std::vector<WheelDevice> wheels;
    EnumerateWheels(wheels);
    if (wheels.empty()) {
        std::fprintf(stderr, "No wheel: run with WINEDLLOVERRIDES=dinput8=n and dinput8.dll beside the program.\n");
        return 1;
    }
    const unsigned hardwareThreads = std::max(1u, std::thread::hardware_concurrency());
    std::printf("Wheel output under Wine: mode %d, %d s of a 60 Hz drive, virtual wheel DLL\n", mode, seconds);
    std::printf("idle\n");
    RunCondition(wheels[0].instanceGuid, mode, seconds);
    std::printf("loaded: %u threads spinning at normal priority\n", hardwareThreads);
    {
        const bench::SpinningLoad load(hardwareThreads);
        RunCondition(wheels[0].instanceGuid, mode, seconds);
    }
    return 0;
}
