#include "ScriptedSimulator.h"

#include <algorithm>

#include "telemetry/IrsdkLayout.h"
#include "telemetry/SimulatorLink_host.h"

namespace veltor::test {

ScriptedSimulator::ScriptedSimulator(std::vector<sim::VariableSpec> variables, int numBuf)
    : layout(std::move(variables), numBuf, 4096) {}

ScriptedSimulator::~ScriptedSimulator() { hostsim::Withdraw(); }

void ScriptedSimulator::Appear(bool connected) {
    // The layout is written before publishing, so the engine never sees a half-written header.
    std::vector<uint8_t> content(layout.BlockSize(), 0);
    layout.WriteLayout(content.data());
    layout.SetStatus(content.data(), connected ? irsdk::kStatusConnected : 0);
    block = hostsim::Publish(content.size(), content);
}

void ScriptedSimulator::Disappear() {
    hostsim::Withdraw();
    block = nullptr;
}

bool ScriptedSimulator::PublishFrame(const TelemetryFrame& frame) {
    if (block == nullptr || !hostsim::BeginEdit()) return false;
    const int index = next;
    next = (next + 1) % layout.NumBuf();
    layout.WriteFrame(layout.Buffer(block, index), frame);
    layout.SetTickCount(block, index, ++tick);
    hostsim::EndEdit(true);
    return true;
}

bool ScriptedSimulator::RepeatFrame() {
    if (block == nullptr || !hostsim::BeginEdit()) return false;
    hostsim::EndEdit(true);
    return true;
}

bool ScriptedSimulator::SetConnected(bool connected) {
    if (block == nullptr || !hostsim::BeginEdit()) return false;
    layout.SetStatus(block, connected ? irsdk::kStatusConnected : 0);
    hostsim::EndEdit(false);
    return true;
}

bool ScriptedSimulator::SetSessionInfo(std::string_view text) {
    if (block == nullptr || !hostsim::BeginEdit()) return false;
    layout.SetSessionInfo(block, text, ++sessionUpdate);
    hostsim::EndEdit(false);
    return true;
}

bool ScriptedSimulator::Sync() { return hostsim::Sync(); }

TelemetryFrame OnTrackFrame(const std::vector<float>& samples, float speed) {
    TelemetryFrame frame;
    frame.isOnTrack = 1;
    frame.speed = speed;
    frame.velocityX = speed;
    frame.steeringWheelAngleMax = 9.0f;
    const int count = std::min(static_cast<int>(samples.size()), kMaxSubSamples);
    for (int i = 0; i < count; ++i) frame.torqueSamples[i] = samples[static_cast<size_t>(i)];
    frame.torqueSampleCount = count;
    frame.steeringWheelTorque = count > 0 ? samples[static_cast<size_t>(count - 1)] : 0.0f;
    return frame;
}

}  // namespace veltor::test
