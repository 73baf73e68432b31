#pragma once
#include <cstdint>

#include "engine/EngineSettings.h"
#include "engine/GripModel.h"
#include "recording/RecordingSample.h"
#include "recording/TelemetryRecorder.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// What one tick computed, as the recording hook sees it between the sub-samples and the burst.
struct TickSignals {
    const TelemetryFrame& frame;
    const GripResult& grip;
    const float* base;        // n values
    const float* texture;     // n values
    const float* correction;  // 6 values
    const float* vibration;   // m values
    int n;
    bool interpolate;
    float crashGain;
    const EngineSettings& settings;
};

// The tick's sample: the sub-sample with the strongest texture, mixed as its output would be.
RecordingSample MakeTickSample(const TickSignals& tick, uint64_t timeMicroseconds);

// Pushes one sample per tick while a recording runs; `now` is the engine's steady clock in ns.
// No lock, no allocation.
void RecordTick(TelemetryRecorder& recorder, const TickSignals& tick, int64_t now);

}  // namespace veltor
