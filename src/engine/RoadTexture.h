#pragma once
#include "settings/EngineSettings.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// Shock movement in metres over one sub-sample to a texture force in newton metres.
float ComputeTexture(float movement, const EngineSettings& settings);

// Texture of sub-sample `i` from the front shocks of this frame and the previous one.
float SubSampleTexture(const TelemetryFrame& frame, const TelemetryFrame& previousFrame, int i,
                       const EngineSettings& settings);

}  // namespace veltor
