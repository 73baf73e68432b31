// Runs the real engine thread against an in-process simulator that drives a synthetic lap, and prints the
// engine's status and force statistics once a second.
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "TelemetryLayoutWriter.h"
#include "engine/EnginePlatform.h"
#include "engine/FfbEngine.h"
#include "telemetry/IrsdkLayout.h"
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

// A simple lap: on track after a second, a steering torque that swings through corners with a 360 Hz
// ripple, and a stop in the pits for the last tenth of each minute.
TelemetryFrame LapFrame(int tick) {
    const double t = tick / 60.0;
    TelemetryFrame f;
    const double lap = std::fmod(t, 60.0);
    f.isOnTrack = (t > 1.0 && lap < 54.0) ? 1 : 0;
    f.speed = static_cast<float>(35.0 + 15.0 * std::sin(t * 0.3));
    f.velocityX = f.speed;
    f.steeringWheelAngleMax = 9.42f;
    for (int i = 0; i < kMaxSubSamples; ++i) {
        const double ts = t + i / 360.0;
        f.torqueSamples[i] = static_cast<float>(14.0 * std::sin(ts * 0.9) + 0.8 * std::sin(ts * 2.0 * 3.14159 * 12.0));
        f.lfShockDeflSamples[i] = static_cast<float>(0.05 + 0.002 * std::sin(ts * 40.0));
        f.rfShockDeflSamples[i] = static_cast<float>(0.05 + 0.002 * std::cos(ts * 37.0));
    }
    f.torqueSampleCount = kMaxSubSamples;
    f.steeringWheelTorque = f.torqueSamples[5];
    f.steeringWheelAngle = static_cast<float>(0.6 * std::sin(t * 0.9));
    f.latAccel = static_cast<float>(12.0 * std::sin(t * 0.9));
    f.yawRate = static_cast<float>(0.4 * std::sin(t * 0.9));
    return f;
}

}  // namespace

int main(int argc, char** argv) {
    int seconds = 20;
    int mode = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--seconds") == 0 && i + 1 < argc) seconds = std::atoi(argv[++i]);
        if (std::strcmp(argv[i], "--mode") == 0 && i + 1 < argc) mode = std::atoi(argv[++i]);
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
            layout.WriteFrame(layout.Buffer(block, index), LapFrame(tick));
            layout.SetTickCount(block, index, tick);
            hostsim::SignalDataValid();
            next += std::chrono::microseconds(16667);
            std::this_thread::sleep_until(next);
        }
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
