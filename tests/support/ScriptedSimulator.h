#pragma once
#include <cstdint>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/IrsdkLayout.h"
#include "telemetry/SimulatorLink_host.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor::test {

// Plays the simulator over the in-process link, one step at a time. Every change to the block is made
// while the engine thread is blocked in its wait on the event, so a script never races the engine's reads;
// a step is false when the engine did not come to its wait in time.
class ScriptedSimulator {
public:
    ~ScriptedSimulator() { hostsim::Withdraw(); }

    // Publishes the mapping and the event, connected, the layout written first.
    void Appear() {
        std::vector<uint8_t> content(layout.BlockSize(), 0);
        layout.WriteLayout(content.data());
        layout.SetStatus(content.data(), irsdk::kStatusConnected);
        block = hostsim::Publish(content.size(), content);
    }
    // The frame goes into the next of the rotating buffers under a new tick, and the event is set.
    bool PublishFrame(const TelemetryFrame& frame) {
        if (block == nullptr || !hostsim::BeginEdit()) return false;
        const int index = tick % layout.NumBuf();
        layout.WriteFrame(layout.Buffer(block, index), frame);
        layout.SetTickCount(block, index, ++tick);
        hostsim::EndEdit(true);
        return true;
    }
    // Wakes the engine for one more pass and returns once it waits again, so every change made before has
    // been seen by a whole pass.
    static bool Sync() { return hostsim::Sync(); }

private:
    sim::TelemetryLayoutWriter layout{sim::StandardVariables(), 3, 4096};
    uint8_t* block = nullptr;
    int32_t tick = 0;
};

}  // namespace veltor::test
