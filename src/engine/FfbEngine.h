#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "settings/EngineSettings.h"
#include "engine/EngineStatus.h"
#include "platform/WindowHandle.h"
#include "settings/CarCoefficients.h"
#include "engine/TickSignals.h"
#include "recording/RecordingHeader.h"
#include "recording/TelemetryRecorder.h"
#include "telemetry/TelemetryFrame.h"
#include "wheel/DeviceGuid.h"

namespace veltor {

// Wide characters the status keeps of a car path or a driver name; a longer text is cut. Its storage is
// reserved up front, so neither thread allocates while it holds statusLock.
constexpr size_t kStatusTextCapacity = 255;

// What the engine thread resolved for the car last, so a tick walks the overrides and the catalogue only
// when the car or the overrides changed. Engine thread only; cleared when the car path changes.
struct CarRowMemo {
    bool valid = false;
    uint64_t overridesVersion = 0;
    CarRow row;
};

// What the GUI thread and the engine thread share, reached through the operations each thread uses.
// settingsLock and statusLock are never held together, and neither across a wait, a device call or I/O.
class FfbEngine {
public:
    FfbEngine();
    ~FfbEngine() { Stop(); }
    FfbEngine(const FfbEngine&) = delete;
    FfbEngine& operator=(const FfbEngine&) = delete;

    // GUI thread.
    void PublishSettings(const EngineSettings& newSettings);
    // Both copy outside the lock: the lock guards only a swap or an assignment into reserved room.
    void PublishOverrides(const std::vector<CarCoefficients>& newOverrides);
    EngineStatus CopyStatus();
    void Start(const EngineSettings& current, WindowHandle window, DeviceGuid device);
    // Start with another platform for the engine thread (tests observe its stores this way). Defined in
    // EngineLoop.h, which its callers include.
    template <class Platform>
    void StartWith(const EngineSettings& current, WindowHandle window, DeviceGuid device);
    void Stop();
    bool IsRunning() const { return running.load(); }
    // Starts a recording from the status and settings of this moment; false unless running, connected and
    // on track, in which case no file is touched.
    bool BeginRecording(const std::wstring& path, const std::wstring& profileName);
    bool IsRecording() const { return recorder.IsActive(); }
    // Ends the recording, if one runs; returns the samples it had dropped for want of room by then.
    uint32_t EndRecording();
    // The meter's figures since the last call, each taken and set to zero at once; no lock.
    OutputFigures TakeOutputFigures();

    // Any thread.
    EngineSettings CopySettings();
    CarRow ResolveCarRow(std::wstring_view carPath, bool useCarSpecific);
    // A recording under a header of the caller's, for a run that has no live session (the replay);
    // `startTime` as TelemetryRecorder::Start takes it.
    bool RecordTo(const std::wstring& path, const RecordingHeader& header, int64_t startTime);

    // Engine thread only.
    bool StopRequested() const { return stopRequested.load(); }
    void MarkRunning(bool isRunning) { running.store(isRunning); }
    // ResolveCarRow's result, walking the lists only when `memo` is stale: a published change of the
    // overrides acts on the next tick, at a cost that does not grow with the lists.
    CarRow ResolveCarRow(std::wstring_view carPath, bool useCarSpecific, CarRowMemo& memo);
    void UpdateStatus(bool isConnected, bool isOnTrack, std::wstring_view carPath, std::wstring_view driverName,
                      int32_t driverUserId, bool driverNameKnown);
    // A stint on track begins: its statistics start from nothing.
    void BeginStint();
    // Converts a finished force for the wheel and counts it for the stint's reports; returns the value the
    // wheel is handed.
    int32_t CountOutput(float force, bool parked, const EngineSettings& tickSettings);
    void ReportClipping();
    void ReportOutput();
    float ComputeCrashGain(const TelemetryFrame& frame, const EngineSettings& tickSettings, int64_t now);
    void ReportStall();
    // The failure mirror: new output failures into the status.
    void MirrorOutputFailures(uint32_t count, int32_t code);
    // The tick's sample to a running recording; no lock, no allocation.
    void RecordTick(const TickSignals& tick, int64_t (*steadyNow)());

private:
    void CountForMeter(int32_t magnitude, bool clipped);

    EngineSettings settings;                 // GUI writes, engine reads; under settingsLock
    std::mutex settingsLock;                 // guards settings and overrides
    std::mutex statusLock;                   // guards status
    std::atomic<bool> stopRequested{false};  // GUI sets, engine reads
    std::atomic<bool> running{false};        // engine sets, GUI reads
    EngineStatus status;                     // engine writes, GUI reads; under statusLock
    std::vector<CarCoefficients> overrides;  // GUI writes, engine reads; under settingsLock
    uint64_t overridesVersion = 0;           // moves on with each PublishOverrides; under settingsLock
    int64_t crashHoldUntil = 0;              // engine thread only, steady-clock ns
    int32_t clipSamples = 0;                 // engine thread only: the stint's statistics
    int32_t clipOver = 0;
    int32_t outSamples = 0;
    int32_t outNonZero = 0;
    int32_t outPeak = 0;
    // Engine adds, GUI takes and zeroes (TakeOutputFigures): the live meter's figures, apart from the status
    // and its lock, so an output costs three relaxed atomic operations and never waits.
    std::atomic<int32_t> meterPeak{0};
    std::atomic<uint32_t> meterOutputs{0};
    std::atomic<uint32_t> meterClipped{0};
    TelemetryRecorder recorder;  // GUI starts and stops it; the engine thread pushes through RecordTick
    std::thread thread;          // GUI thread; joinable from Start to Stop
};

}  // namespace veltor
