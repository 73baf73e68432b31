#pragma once
#include "settings/EngineSettings.h"
#include "engine/TickSignals.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// The 35 Hz ABS vibration, one value per output of the tick; carries its phase in `absPhase`.
void FillAbsVibration(const TelemetryFrame& frame, const EngineSettings& settings, bool interpolate, int outputs,
                      float& absPhase, float (&vibration)[kMaxOutputsPerTick]);

}  // namespace veltor
