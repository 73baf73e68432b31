#pragma once
#include "settings/EngineSettings.h"
#include "engine/GripModel.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Outputs of one tick at most: the interpolated mode doubles the sub-samples.
constexpr int kMaxOutputsPerTick = 2 * kMaxSubSamples;

// What one tick computed, as the recording hook sees it between the sub-samples and the burst.
struct TickSignals {
    const TelemetryFrame& frame;
    const GripResult& grip;
    const float* base;        // n values
    const float* texture;     // n values
    const float* correction;  // kMaxSubSamples values
    const float* vibration;   // one value per output
    int n;
    bool interpolate;
    float crashGain;
    const EngineSettings& settings;
};

}  // namespace veltor
