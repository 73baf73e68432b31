#pragma once
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "SteppedSleeps.h"
#include "TelemetryLayoutWriter.h"
#include "engine/EngineLoop.h"
#include "engine/EnginePlatform.h"
#include "telemetry/IrsdkClient.h"

namespace veltor::test {

struct StoredForce {
    int32_t outputIndex;
    int32_t value;
    int64_t at;  // ns on the stepped clock
};

// The engine's side of the wheel seam, with nothing behind it.
struct RecordingWheel {
    bool Open(WindowHandle, const DeviceGuid*) { return true; }
    void Close() {}

    std::atomic<int32_t> commandedForce{0};
    std::atomic<int32_t> dampingPercent{0};
    std::atomic<bool> lockDamping{false};
    std::atomic<bool> outputEnabled{false};
    std::atomic<int32_t> lastError{0};
    std::atomic<uint32_t> errorCount{0};
};

// A clock the test sets, which the burst's pacer moves as it sleeps and spins, and a log of the stores of
// the last pass. Clearing the log keeps its room, so only the first pass that logs allocates.
struct SteppedPlatform : EnginePlatform {
    using Wheel = RecordingWheel;
    using Pacer = BasicPacer<SteppedSleeps>;
    static inline int64_t& now = SteppedSleeps::now;
    static inline std::vector<StoredForce> stores;

    static int64_t Now() { return now; }
    static void ForceStored(int32_t outputIndex, int32_t value) { stores.push_back({outputIndex, value, now}); }
};

// An engine loop on the stepped platform, reading a one-buffer block that the test fills frame by frame.
class TickHarness {
public:
    explicit TickHarness(std::vector<sim::VariableSpec> variables = sim::StandardVariables())
        : layout(std::move(variables), 1, 256), block(layout.BlockSize()) {
        layout.WriteLayout(block.data());
        client.AttachBlock(block.data(), block.size());
        loop.AssumeSession(SessionIdentity{});
    }

    // Publishes `frame` as a new tick (or the old tick again) and the settings, and runs one pass from the
    // read on.
    void Run(const TelemetryFrame& frame, bool repeat = false) {
        layout.WriteFrame(layout.Buffer(block.data(), 0), frame);
        if (!repeat) ++tick;
        layout.SetTickCount(block.data(), 0, tick);
        SteppedPlatform::stores.clear();
        engine.PublishSettings(settings);
        loop.ProcessFrame(client, SteppedPlatform::now);
    }

    sim::TelemetryLayoutWriter layout;
    std::vector<uint8_t> block;
    IrsdkClient client;
    EngineSettings settings;  // published before each pass
    FfbEngine engine;
    RecordingWheel wheel;
    EngineLoop<SteppedPlatform> loop{engine, wheel};
    int32_t tick = 0;
};

// A frame on track at `speed`, calm but for its torque sub-samples.
inline TelemetryFrame OnTrackFrame(std::initializer_list<float> samples, float speed = 3.0f) {
    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.speed = frame.velocityX = speed;
    frame.steeringWheelAngleMax = 8.0f;
    std::copy(samples.begin(), samples.end(), frame.torqueSamples);
    frame.steeringWheelTorque = *(samples.end() - 1);
    return frame;
}

inline TelemetryFrame SteadyFrame(float torque, float speed = 3.0f) {
    return OnTrackFrame({torque, torque, torque, torque, torque, torque}, speed);
}

// The values of the last pass's stores, in order.
inline std::vector<int32_t> StoredValues() {
    std::vector<int32_t> values;
    for (const StoredForce& store : SteppedPlatform::stores) values.push_back(store.value);
    return values;
}

}  // namespace veltor::test
