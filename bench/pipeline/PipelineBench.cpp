// Replay throughput per mode, allocations per tick, and the cost of the recording hook.
// Usage: pipeline_bench [telemetry.ibt]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "AllocationCounter.h"
#include "IbtImage.h"
#include "ReplaySession.h"
#include "engine/RecordingHook.h"
#include "platform/SteadyClock.h"

namespace {

using namespace veltor;
using namespace veltor::replay;
using Clock = std::chrono::steady_clock;

constexpr int kRepetitions = 20;
constexpr int kHookCalls = 200000;
constexpr int kHookRun = 8000;  // fewer than the ring holds

double Seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// Best wall time of whole replays (engine set-up included) over the image.
double BestReplaySeconds(const IbtImage& source, const ReplayOptions& options) {
    const SessionIdentity identity = ScanReplayIdentity(options, source);
    double best = 1e9;
    for (int i = 0; i < kRepetitions; ++i) {
        IbtImage image = source;
        ReplayResult result;
        std::string error;
        const Clock::time_point start = Clock::now();
        RunReplay(options, identity, image, result, error);
        best = std::min(best, Seconds(Clock::now() - start));
    }
    return best;
}

long AllocationsOfReplay(const IbtImage& source, int records, const ReplayOptions& options) {
    IbtImage image = source;
    image.recordCount = records;
    ReplayResult result;
    std::string error;
    const SessionIdentity identity = ScanReplayIdentity(options, image);
    const long before = test::AllocationCount();
    RunReplay(options, identity, image, result, error);
    return test::AllocationCount() - before;
}

void PrintReplay(const IbtImage& image, int mode) {
    ReplayOptions options;
    options.settings.Mode = mode;
    const double seconds = BestReplaySeconds(image, options);
    const double ticks = image.recordCount;
    std::printf("replay mode %d: %d ticks in %.3f ms: %.0f ticks/s, %.1f ns/tick\n", mode, image.recordCount,
                seconds * 1e3, ticks / seconds, seconds * 1e9 / ticks);
    // Set-up allocates; the ticks themselves must not: compare a whole run with a run of one record.
    const long whole = AllocationsOfReplay(image, image.recordCount, options);
    const long one = AllocationsOfReplay(image, 1, options);
    std::printf("replay mode %d: allocations in ticks 2..%d: %ld\n", mode, image.recordCount, whole - one);
}

void PrintHookCost() {
    TelemetryFrame frame;
    frame.tickCount = 1;
    GripResult grip;
    float base[kMaxSubSamples] = {1, 2, 3, 4, 5, 6};
    float texture[kMaxSubSamples] = {0.5f, -0.7f, 0.2f, 0.9f, -0.1f, 0.3f};
    float correction[kMaxSubSamples] = {};
    float vibration[kMaxOutputsPerTick] = {};
    EngineSettings settings;
    const TickSignals tick{frame, grip, base, texture, correction, vibration, 6, false, 1.0f, settings};
    auto recorder = std::make_unique<TelemetryRecorder>();

    Clock::time_point start = Clock::now();
    for (int i = 0; i < kHookCalls; ++i) RecordTick(*recorder, tick, &SteadyNowNanoseconds);
    const double idle = Seconds(Clock::now() - start) * 1e9 / kHookCalls;

    const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltor_bench_hook.vtrrec";
    if (!recorder->Start(path.wstring(), RecordingHeader{})) {
        std::printf("recording hook: cannot create %s\n", path.string().c_str());
        return;
    }
    // Pushes in runs that fit the ring, letting the writer drain between them, so each push lands.
    const long before = test::AllocationCount();
    Clock::duration pushing{};
    for (int run = 0; run < kHookCalls / kHookRun; ++run) {
        start = Clock::now();
        for (int i = 0; i < kHookRun; ++i) RecordTick(*recorder, tick, &SteadyNowNanoseconds);
        pushing += Clock::now() - start;
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
    const double active = Seconds(pushing) * 1e9 / kHookCalls;
    const long hookAllocations = test::AllocationCount() - before;
    recorder->Stop();
    std::printf("recording hook: %.1f ns/tick recording, %.1f ns/tick idle, %ld allocations, %u of %d dropped\n",
                active, idle, hookAllocations, recorder->DroppedSamples(), kHookCalls);
    std::filesystem::remove(path);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string path = argc > 1 ? argv[1] : VELTOR_BENCH_SAMPLE;
    IbtImage image;
    std::string error;
    if (!LoadIbtImage(path, image, error)) {
        std::fprintf(stderr, "pipeline_bench: %s\n", error.c_str());
        return 2;
    }
    PrintReplay(image, 0);
    PrintReplay(image, 1);
    PrintHookCost();
    return 0;
}
