#pragma once
#include <cstdint>
#include <string>

namespace veltor {

// The snapshot the engine thread writes and the GUI copies whole. A reader that polls at its own pace
// compares the ...Count fields with the values it saw last to notice a new report.
struct EngineStatus {
    bool connected = false;
    bool onTrack = false;
    bool driverNameKnown = true;
    float clippedPercent = 0.0f;
    uint32_t clipReportCount = 0;
    uint32_t outputFailureCount = 0;
    uint32_t outputFailureCode = 0;
    uint32_t onTrackChangeCount = 0;
    uint32_t outputReportCount = 0;
    uint32_t outputReportSamples = 0;
    uint32_t outputReportNonZero = 0;
    int32_t outputReportPeak = 0;
    std::wstring carPath = L"generic";
    std::wstring driverName = L"unknown";
    int32_t driverUserId = 0;
    // Counts up by 1 each time the engine released the force because the simulator, on track, sent no new
    // frame for a second; the GUI logs "Telemetry stalled: force released." when it changes.
    uint32_t telemetryStallCount = 0;
};

// What the wheel was handed since the GUI's last look, for the live meter: the largest magnitude in output
// units, the outputs and those of them that clipped.
struct OutputFigures {
    int32_t peak = 0;
    uint32_t outputs = 0;
    uint32_t clipped = 0;
};

}  // namespace veltor
