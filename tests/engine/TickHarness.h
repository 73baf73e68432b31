#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "ForceLog.h"
#include "TelemetryLayoutWriter.h"
#include "engine/EngineLoop.h"
#include "telemetry/IrsdkClient.h"

namespace veltor::test {

// The engine's platform for ticks run by hand: a clock the test sets, no waiting, and a fixed log of the
// stores of the last tick that takes no allocation.
struct TickPlatform {
    using Wheel = RecordingWheel;
    static constexpr int kMaxStores = 16;

    static inline int64_t now = 0;
    static inline int storeCount = 0;
    static inline int32_t storedIndex[kMaxStores] = {};
    static inline int32_t storedValue[kMaxStores] = {};

    static int64_t Now() { return now; }
    static void SleepMilliseconds(int32_t) {}
    static void WaitUntilOffset(int64_t, int32_t, int32_t) {}
    static void ForceStored(int32_t outputIndex, int32_t value) {
        if (storeCount == kMaxStores) return;
        storedIndex[storeCount] = outputIndex;
        storedValue[storeCount] = value;
        ++storeCount;
    }
};

// An engine loop reading a one-buffer block that the test fills frame by frame.
class TickHarness {
public:
    TickHarness() : layout(sim::StandardVariables(), 1, 256), block(layout.BlockSize()) {
        layout.WriteLayout(block.data());
        client.AttachBlock(block.data(), block.size());
        loop.connected = true;
    }

    // Publishes `frame` as a new tick (or the old tick again) and runs one pass from the read on.
    void Run(const TelemetryFrame& frame, bool repeat = false) {
        layout.WriteFrame(layout.Buffer(block.data(), 0), frame);
        if (!repeat) ++tick;
        layout.SetTickCount(block.data(), 0, tick);
        TickPlatform::storeCount = 0;
        loop.ProcessFrame(client, TickPlatform::now);
    }

    sim::TelemetryLayoutWriter layout;
    std::vector<uint8_t> block;
    IrsdkClient client;
    FfbEngine engine;
    RecordingWheel wheel;
    EngineLoop<TickPlatform> loop{engine, wheel};
    int32_t tick = 0;
};

// A frame on track at `speed` whose six torque sub-samples are all `torque`, everything else calm.
inline TelemetryFrame SteadyFrame(float torque, float speed = 3.0f) {
    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.speed = speed;
    frame.velocityX = speed;
    frame.steeringWheelAngleMax = 8.0f;
    frame.steeringWheelTorque = torque;
    for (float& sample : frame.torqueSamples) sample = torque;
    return frame;
}

}  // namespace veltor::test
