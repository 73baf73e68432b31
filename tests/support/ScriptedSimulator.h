#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "TelemetryLayoutWriter.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor::test {

// Plays the simulator over the in-process link, one step at a time. Every change to the block is made
// while the engine thread is blocked in its wait on the event, so a script never races the engine's reads.
class ScriptedSimulator {
public:
    explicit ScriptedSimulator(std::vector<sim::VariableSpec> variables = sim::StandardVariables(), int numBuf = 3);
    ~ScriptedSimulator();

    // Publishes the mapping and the event, with the status bit set or clear.
    void Appear(bool connected);
    // Removes the names, as the simulator's exit does.
    void Disappear();

    // Each of these waits for the engine to be in its wait, changes the block, and (for frames) sets the
    // event. False if the engine did not come to its wait within the timeout.
    bool PublishFrame(const TelemetryFrame& frame);
    bool RepeatFrame();  // sets the event with the newest tick unchanged
    bool SetConnected(bool connected);
    bool SetSessionInfo(std::string_view text);
    // Wakes the engine for one more pass and returns once it has finished it and waits again, so every
    // change made before has been seen by a whole pass.
    bool Sync();

private:
    sim::TelemetryLayoutWriter layout;
    uint8_t* block = nullptr;
    int32_t tick = 0;
    int32_t sessionUpdate = 0;
    int next = 0;
};

// A frame on track whose six torque sub-samples are `samples` and everything else is calm.
TelemetryFrame OnTrackFrame(const std::vector<float>& samples, float speed = 30.0f);

}  // namespace veltor::test
