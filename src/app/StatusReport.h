#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/EngineStatus.h"

namespace veltor {

// The name of a DirectInput failure code in the session log, "unknown" for the codes it doesn't name.
std::wstring_view DirectInputErrorName(uint32_t code);

std::wstring ClippingLine(float clippedPercent);
std::wstring OutputReportLine(const EngineStatus& status);
std::wstring DirectInputErrorLine(uint32_t code);

// The engine's reports in a status snapshot that the session log hasn't shown yet. Each `...Count` reaches
// the log once: `Window` keeps the value logged last in LastClipStamp, LastTrackStamp, LastReportStamp,
// LastDeviceErrorStamp and LastStallStamp, and has AppendLog. Track and output reports wait while debug
// logging is off, so the latest of each comes out as soon as it goes on.
template <class Window>
void LogNewClippingReport(Window& window, const EngineStatus& status) {
    if (status.clipReportCount == 0 || status.clipReportCount == window.LastClipStamp) return;
    window.LastClipStamp = status.clipReportCount;
    window.AppendLog(ClippingLine(status.clippedPercent));
    if (status.clippedPercent > 2.5f) window.AppendLog(L"Consider lowering Force strength to reduce clipping.");
}

template <class Window>
void LogNewStatusReports(Window& window, const EngineStatus& status, bool debugLogging) {
    if (debugLogging && status.onTrackChangeCount != 0 && status.onTrackChangeCount != window.LastTrackStamp) {
        window.LastTrackStamp = status.onTrackChangeCount;
        window.AppendLog(status.onTrack ? L"Telemetry: On track." : L"Telemetry: Not on track.");
    }
    LogNewClippingReport(window, status);
    if (debugLogging && status.outputReportCount != 0 && status.outputReportCount != window.LastReportStamp) {
        window.LastReportStamp = status.outputReportCount;
        window.AppendLog(OutputReportLine(status));
        window.AppendLog(status.outputReportNonZero != 0
                             ? L"Non-zero FFB was sent to DirectInput. If the wheel is still dead, test "
                               L"DirectInput/Simucube effect compatibility."
                             : L"No non-zero FFB was sent. Check iRacing telemetry On track status.");
    }
    if (status.outputFailureCount != 0 && status.outputFailureCount != window.LastDeviceErrorStamp) {
        window.LastDeviceErrorStamp = status.outputFailureCount;
        window.AppendLog(DirectInputErrorLine(status.outputFailureCode));
    }
    if (status.telemetryStallCount != 0 && status.telemetryStallCount != window.LastStallStamp) {
        window.LastStallStamp = status.telemetryStallCount;
        window.AppendLog(L"Telemetry stalled: force released.");
    }
}

}  // namespace veltor
