#pragma once
#include <cstdint>
#include <string_view>

#include "settings/EngineSettings.h"
#include "engine/GripModel.h"
#include "engine/TickSignals.h"
#include "settings/CarCoefficients.h"
#include "recording/RecordingHeader.h"
#include "recording/RecordingSample.h"
#include "recording/TelemetryRecorder.h"
#include "telemetry/TelemetryFrame.h"

namespace veltor {

// The tick's sample: the sub-sample with the strongest texture, mixed as its output would be.
RecordingSample MakeTickSample(const TickSignals& tick, uint64_t timeMicroseconds);

// Pushes one sample per tick while a recording runs. The clock is read only once the recording is known,
// so a recording started meanwhile never sees a time before its start. No lock, no allocation.
void RecordTick(TelemetryRecorder& recorder, const TickSignals& tick, int64_t (*steadyNow)());

// The header of a recording that starts now: identity and profile as given, settings and the car's five
// coefficients of this moment.
RecordingHeader MakeRecordingHeader(std::wstring_view carPath, std::wstring_view driverName,
                                    std::wstring_view profileName, const EngineSettings& settings, const CarRow& row,
                                    uint64_t startTimeMs);

}  // namespace veltor
