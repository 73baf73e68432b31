// Pacing of the real engine thread: a simulator thread sets the data-valid event at 60 Hz with six
// sub-samples a frame; the engine runs each output mode for a while, first on an idle machine and then
// loaded with as many spinning threads of normal priority as the machine has hardware threads. Prints, per
// run, the lateness of each store to commandedForce against its target offset from t0, the latency from
// the event being set to the first store of the tick, the pacer's learned margin, and the CPU time of the
// engine and output threads. Each condition first measures the platform's floor, a bare thread woken by the
// event with no engine, and prints each latency as a ratio to it, and beside it how late a bare sleep wakes;
// a bare sleep also runs beside the engine as its witness.
#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "SpinningLoad.h"
#include "TelemetryLayoutWriter.h"
#include "engine/EngineLoop.h"
#include "engine/EnginePlatform.h"
#include "platform/SystemSleeps.h"
#include "platform/ThreadControl.h"
#include "telemetry/IrsdkLayout.h"
#include "telemetry/SimulatorLink_host.h"

namespace {

using namespace veltor;

constexpr size_t kCapacity = 1 << 17;

// Filled by the engine thread only, into storage reserved up front; read after the engine has stopped.
struct Measurements {
    std::vector<int64_t> lateness = std::vector<int64_t>(kCapacity);
    std::vector<int64_t> eventToFirst = std::vector<int64_t>(kCapacity);
    std::vector<int64_t> margins = std::vector<int64_t>(kCapacity);
    size_t latenessCount = 0;
    size_t eventCount = 0;
    size_t marginCount = 0;
    int64_t spacing = 0;     // ns between outputs in this run's mode
    int64_t firstStore = 0;
    int64_t nextTarget = 0;
    bool firstPending = false;
};
Measurements gMeasure;
std::atomic<int64_t> gLastEventSet{0};
std::atomic<bool> gRecording{false};
std::atomic<bool> gEngineKnown{false};
std::atomic<bool> gOutputKnown{false};
pthread_t gEngineThread;
pthread_t gOutputThread;

void Add(std::vector<int64_t>& values, size_t& count, int64_t value) {
    if (count < values.size()) values[count++] = value;
}

// The product's pacer, watched: the target of each wait, and the margin it learned.
struct BenchPacer {
    void WaitUntil(int64_t deadline) {
        if (gMeasure.firstPending) {  // the first store of the burst is measured against t0
            Add(gMeasure.lateness, gMeasure.latenessCount, gMeasure.firstStore - (deadline - gMeasure.spacing));
            gMeasure.firstPending = false;
        }
        gMeasure.nextTarget = deadline;
        pacer.WaitUntil(deadline);
        if (gRecording.load(std::memory_order_relaxed)) Add(gMeasure.margins, gMeasure.marginCount, pacer.Margin());
    }
    Pacer pacer;
};

// The product's wheel clock, telling which thread is the output thread.
struct BenchWheelClock : SteadyWheelClock {
    void SleepUntil(int64_t deadline) {
        if (!gOutputKnown.load(std::memory_order_relaxed)) {
            gOutputThread = pthread_self();
            gOutputKnown.store(true);
        }
        SteadyWheelClock::SleepUntil(deadline);
    }
};

struct BenchPlatform : EnginePlatform {
    using Pacer = BenchPacer;
    using Wheel = BasicWheelOutput<DirectInputDevice, BenchWheelClock>;

    static void ForceStored(int32_t outputIndex, int32_t) {
        const int64_t now = EnginePlatform::Now();
        if (!gEngineKnown.load(std::memory_order_relaxed)) {
            gEngineThread = pthread_self();
            gEngineKnown.store(true);
        }
        if (!gRecording.load(std::memory_order_relaxed)) return;
        if (outputIndex == 0) {
            gMeasure.firstStore = now;
            gMeasure.firstPending = true;
            Add(gMeasure.eventToFirst, gMeasure.eventCount, now - gLastEventSet.load());
        } else {
            Add(gMeasure.lateness, gMeasure.latenessCount, now - gMeasure.nextTarget);
        }
    }
};

TelemetryFrame BenchFrame(int tick) {
    TelemetryFrame f;
    f.isOnTrack = 1;
    f.speed = 40.0f;
    f.velocityX = 40.0f;
    f.steeringWheelAngleMax = 9.0f;
    for (int i = 0; i < kMaxSubSamples; ++i) f.torqueSamples[i] = static_cast<float>(10.0 * std::sin((tick * 6 + i) / 50.0));
    f.torqueSampleCount = kMaxSubSamples;
    f.steeringWheelTorque = f.torqueSamples[5];
    return f;
}

// p in [0, 1] of values in ns, printed in µs.
double Percentile(std::vector<int64_t> values, double p) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(p * (values.size() - 1) + 0.5));
    return values[index] / 1000.0;
}

double ThreadCpuSeconds(pthread_t thread) {
    clockid_t clock;
    if (pthread_getcpuclockid(thread, &clock) != 0) return 0.0;
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

// Event set -> wake-up of a thread that does nothing else, at the engine thread's priority (µs); and beside
// it, in the same seconds, how late the machine wakes a bare sleep to a deadline on the stores' grid: a
// store's lateness cannot beat that floor's max but by spinning the whole gap.
struct Floor {
    double p50 = 0.0;
    double p99 = 0.0;
    double max = 0.0;
};

std::vector<int64_t> BareSleepLateness(const std::atomic<bool>& done) {
    std::vector<int64_t> lateness;
    lateness.reserve(1 << 20);
    SetCurrentThreadPriorityHighest();
    SystemSleeps sleeps;
    for (int64_t deadline = sleeps.Now(); !done.load();) {
        deadline = std::max(deadline, sleeps.Now()) + kInterpolatedSpacingMicroseconds * 1000LL;
        sleeps.Sleep(0, deadline);
        if (lateness.size() < lateness.capacity()) lateness.push_back(sleeps.Now() - deadline);
    }
    return lateness;
}

Floor MeasureFloor(int seconds) {
    std::vector<int64_t> wakes;
    wakes.reserve(static_cast<size_t>(seconds) * 70);
    std::atomic<bool> done{false};
    std::thread waiter([&] {
        SetCurrentThreadPriorityHighest();
        link::Handle event = link::OpenDataValidEvent();
        while (!done.load()) {
            if (link::WaitForEvent(event, 100) != link::WaitResult::Signalled) continue;
            const int64_t now = SteadyNowNanoseconds();
            if (wakes.size() < wakes.capacity()) wakes.push_back(now - gLastEventSet.load());
        }
        link::CloseLinkHandle(event);
    });
    std::vector<int64_t> sleepLateness;
    std::thread sleeper([&] { sleepLateness = BareSleepLateness(done); });
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    done.store(true);
    waiter.join();
    sleeper.join();
    const Floor floor{Percentile(wakes, 0.50), Percentile(wakes, 0.99), Percentile(wakes, 1.0)};
    std::printf("  floor: event set -> bare wake-up, no engine, %zu ticks (us): p50 %.1f  p99 %.1f  max %.1f\n",
                wakes.size(), floor.p50, floor.p99, floor.max);
    std::printf("  floor: bare sleep to a deadline every 1380 us, no engine, %zu sleeps (us): p50 %.1f  p99 %.1f  max %.1f\n",
                sleepLateness.size(), Percentile(sleepLateness, 0.50), Percentile(sleepLateness, 0.99),
                Percentile(sleepLateness, 1.0));
    return floor;
}

double Ratio(double value, double floor) { return floor > 0.0 ? value / floor : 0.0; }

void RunMode(int mode, int seconds, const Floor& floor) {
    gMeasure = Measurements{};
    gMeasure.spacing = (mode == 1 ? kInterpolatedSpacingMicroseconds : kSubSampleSpacingMicroseconds) * 1000LL;
    gEngineKnown.store(false);
    gOutputKnown.store(false);
    FfbEngine engine;
    EngineSettings settings;
    settings.Mode = mode;
    engine.StartWith<BenchPlatform>(settings, nullptr, DeviceGuid{});
    // Connect, reach the track and let the pacer learn before measuring.
    std::this_thread::sleep_for(std::chrono::milliseconds(2000));
    const bool threadsKnown = gEngineKnown.load() && gOutputKnown.load();
    const double engineBefore = threadsKnown ? ThreadCpuSeconds(gEngineThread) : 0.0;
    const double outputBefore = threadsKnown ? ThreadCpuSeconds(gOutputThread) : 0.0;
    // A witness beside the engine: a bare sleep to a deadline on the stores' grid in the same seconds, so
    // that a stall of the machine shows in both maxima, not in one run only.
    std::atomic<bool> witnessDone{false};
    std::vector<int64_t> witness;
    gRecording.store(true);
    const auto begin = std::chrono::steady_clock::now();
    std::thread witnessThread([&] { witness = BareSleepLateness(witnessDone); });
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    gRecording.store(false);
    witnessDone.store(true);
    witnessThread.join();
    const double engineAfter = threadsKnown ? ThreadCpuSeconds(gEngineThread) : 0.0;
    const double outputAfter = threadsKnown ? ThreadCpuSeconds(gOutputThread) : 0.0;
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    engine.Stop();

    std::vector<int64_t> lateness(gMeasure.lateness.begin(), gMeasure.lateness.begin() + gMeasure.latenessCount);
    std::vector<int64_t> latency(gMeasure.eventToFirst.begin(), gMeasure.eventToFirst.begin() + gMeasure.eventCount);
    std::vector<int64_t> margins(gMeasure.margins.begin(), gMeasure.margins.begin() + gMeasure.marginCount);
    std::printf("  mode %d (%s), %d s, %zu stores, %zu ticks\n", mode,
                mode == 1 ? "360 Hz interpolated, 1380 us" : "360 Hz telemetry, 2760 us", seconds, lateness.size(),
                latency.size());
    std::printf("    lateness vs target offset from t0 (us): p50 %.1f  p99 %.1f  max %.1f\n",
                Percentile(lateness, 0.50), Percentile(lateness, 0.99), Percentile(lateness, 1.0));
    std::printf("    witness: bare sleep to a deadline every 1380 us in the same seconds, %zu sleeps (us): p50 %.1f  p99 %.1f  max %.1f\n",
                witness.size(), Percentile(witness, 0.50), Percentile(witness, 0.99), Percentile(witness, 1.0));
    const double p50 = Percentile(latency, 0.50);
    const double p99 = Percentile(latency, 0.99);
    std::printf("    event set -> first store of the tick (us): p50 %.1f (%.1fx floor)  p99 %.1f (%.1fx floor)\n", p50,
                Ratio(p50, floor.p50), p99, Ratio(p99, floor.p99));
    std::printf("    learned sleep margin (us): p50 %.1f  p99 %.1f\n", Percentile(margins, 0.50),
                Percentile(margins, 0.99));
    if (!threadsKnown) {
        std::printf("    thread CPU: threads not found\n");
        return;
    }
    std::printf("    engine thread CPU: %.1f ms per second (%.1f %%); output thread CPU: %.1f ms per second (%.1f %%)\n",
                (engineAfter - engineBefore) * 1000.0 / wall, (engineAfter - engineBefore) * 100.0 / wall,
                (outputAfter - outputBefore) * 1000.0 / wall, (outputAfter - outputBefore) * 100.0 / wall);
}

}  // namespace

int main(int argc, char** argv) {
    int seconds = 20;
    bool idle = true;
    bool loaded = true;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--seconds") == 0 && i + 1 < argc) seconds = std::max(1, std::atoi(argv[++i]));
        if (std::strcmp(argv[i], "--idle-only") == 0) loaded = false;
        if (std::strcmp(argv[i], "--loaded-only") == 0) idle = false;
    }
    sim::TelemetryLayoutWriter layout(sim::StandardVariables(), 3, 4096);
    uint8_t* block = hostsim::Publish(layout.BlockSize());
    layout.WriteLayout(block);
    layout.SetStatus(block, irsdk::kStatusConnected);

    std::atomic<bool> stop{false};
    std::thread simulator([&] {
        auto next = std::chrono::steady_clock::now();
        for (int tick = 1; !stop.load(); ++tick) {
            const int index = tick % layout.NumBuf();
            layout.WriteFrame(layout.Buffer(block, index), BenchFrame(tick));
            layout.SetTickCount(block, index, tick);
            gLastEventSet.store(SteadyNowNanoseconds());
            hostsim::SignalDataValid();
            next += std::chrono::nanoseconds(16666667);
            std::this_thread::sleep_until(next);
        }
    });
    const unsigned hardwareThreads = std::max(1u, std::thread::hardware_concurrency());
    std::printf("Engine pacing benchmark (host, %u hardware threads)\n", hardwareThreads);
    if (idle) {
        std::printf("idle\n");
        const Floor floor = MeasureFloor(seconds);
        RunMode(0, seconds, floor);
        RunMode(1, seconds, floor);
    }
    if (loaded) {
        std::printf("loaded: %u threads spinning at normal priority\n", hardwareThreads);
        const bench::SpinningLoad load(hardwareThreads);
        const Floor floor = MeasureFloor(seconds);
        RunMode(0, seconds, floor);
        RunMode(1, seconds, floor);
    }
    stop.store(true);
    simulator.join();
    return 0;
}
