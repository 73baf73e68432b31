#pragma once
#include "engine/EngineSettings.h"
#include "engine/GripModel.h"
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

// Pushes one sample per tick while a recording runs. No lock, no allocation.
void RecordTick(TelemetryRecorder& recorder, const TickSignals& tick);

}  // namespace veltor
