// Runs the real engine thread against our simulator over the in-process link, playing its synthetic drive
// (or, with --ibt FILE, a recorded one), and prints the engine's status and force statistics once a second.
// Options the demo does not know go to the simulator.
#include <atomic>
#include <cmath>
#include <vector>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "Simulator.h"
#include "engine/EnginePlatform.h"
#include "engine/EngineLoop.h"
#include "telemetry/SimulatorLink_host.h"

namespace {

using namespace veltor;

// Force statistics of the last second, fed by every store of the engine thread.
struct Statistics {
    std::mutex lock;
    long stores = 0;
    int32_t minimum = 0;
    int32_t maximum = 0;
    double sumSquares = 0.0;
};
Statistics gStats;

struct DemoPlatform : EnginePlatform {
    static void ForceStored(int32_t, int32_t value) {
        std::lock_guard guard(gStats.lock);
        if (gStats.stores == 0) gStats.minimum = gStats.maximum = value;
        gStats.minimum = std::min(gStats.minimum, value);
        gStats.maximum = std::max(gStats.maximum, value);
        gStats.sumSquares += static_cast<double>(value) * value;
        ++gStats.stores;
    }
};

}  // namespace

int main(int argc, char** argv) {
    int seconds = 20;
    int mode = 0;
    std::vector<const char*> simulatorArgs{argv[0], "--quiet"};
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--seconds") == 0 && i + 1 < argc) {
            seconds = std::atoi(argv[++i]);
        } else if (std::strcmp(argv[i], "--mode") == 0 && i + 1 < argc) {
            mode = std::atoi(argv[++i]);
        } else {
            simulatorArgs.push_back(argv[i]);
        }
    }
    sim::SimulatorOptions options;
    std::string error;
    if (!sim::ParseSimulatorOptions(static_cast<int>(simulatorArgs.size()), simulatorArgs.data(), options, error)) {
        std::fprintf(stderr, "veltor_demo: %s\nusage: veltor_demo [--seconds N] [--mode 0|1] and %s", error.c_str(),
                     sim::SimulatorUsage());
        return 2;
    }

    std::atomic<bool> stop{false};
    std::thread simulator([&] {
        if (sim::RunSimulator(options, stop, stdout) != 0) std::exit(1);
    });

    FfbEngine engine;
    EngineSettings settings;
    settings.Mode = mode;
    engine.StartWith<DemoPlatform>(settings, nullptr, DeviceGuid{});
    std::printf("Gripline engine demo: mode %d, %d s against the built-in simulator\n", mode, seconds);
    for (int s = 1; s <= seconds; ++s) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const EngineStatus status = engine.CopyStatus();
        std::lock_guard guard(gStats.lock);
        const double rms = gStats.stores ? std::sqrt(gStats.sumSquares / gStats.stores) : 0.0;
        std::printf("%3ds  %s, %s, car %ls | outputs/s %4ld  min %6d  max %6d  rms %7.1f | stints %u, clipped %.2f%%\n",
                    s, status.connected ? "connected" : "disconnected", status.onTrack ? "on track" : "off track",
                    status.carPath.c_str(), gStats.stores, gStats.minimum, gStats.maximum, rms,
                    status.outputReportCount, status.clippedPercent);
        std::fflush(stdout);
        gStats.stores = 0;
        gStats.sumSquares = 0.0;
    }
    engine.Stop();
    stop.store(true);
    simulator.join();
    std::printf("Stopped. Simulator's maximum force broadcasts:");
    for (int32_t v : hostsim::Broadcasts()) std::printf(" %d", v);
    std::printf("\n");
    return 0;
}
