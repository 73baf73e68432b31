#pragma once
#include "engine/EngineSettings.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Shock movement in metres over one sub-sample to a texture force in newton metres.
float ComputeTexture(float movement, const EngineSettings& settings);

// Texture of sub-sample `i` from the front shocks of this frame and the previous one.
float SubSampleTexture(const TelemetryFrame& frame, const TelemetryFrame& previousFrame, int i,
                       const EngineSettings& settings);

// The 35 Hz ABS vibration, one value per output of the tick; carries its phase in `absPhase`.
void FillAbsVibration(const TelemetryFrame& frame, const EngineSettings& settings, bool interpolate, int outputs,
                      float& absPhase, float (&vibration)[12]);

// Puts the signals of one output together; `priorityActed` tells whether the detail priority changed it.
float MixForce(const EngineSettings& settings, float base, float resistance, float texture, float other,
               bool* priorityActed = nullptr);

}  // namespace veltor
