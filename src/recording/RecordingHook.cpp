#include "recording/RecordingHook.h"

namespace veltor {

void RecordTick(TelemetryRecorder& recorder, const TickSignals&) {
    if (!recorder.IsActive()) return;
}

}  // namespace veltor
