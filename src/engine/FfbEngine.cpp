#include "engine/FfbEngine.h"

#include "engine/CrashProtection.h"
#include "engine/EngineLoop.h"
#include "engine/EnginePlatform.h"
#include "engine/RecordingHook.h"
#include "profiles/CarCatalogue.h"

namespace veltor {

void FfbEngine::PublishSettings(const EngineSettings& newSettings) {
    std::lock_guard guard(settingsLock);
    settings = newSettings;
}

EngineSettings FfbEngine::CopySettings() {
    std::lock_guard guard(settingsLock);
    return settings;
}

void FfbEngine::PublishOverrides(const std::vector<CarCoefficients>& newOverrides) {
    std::lock_guard guard(settingsLock);
    overrides = newOverrides;
}

CarRow FfbEngine::ResolveCarRow(std::wstring_view carPath, bool useCarSpecific) {
    if (!useCarSpecific) return kCarIndependentRow;
    {
        std::lock_guard guard(settingsLock);
        for (const CarCoefficients& row : overrides) {
            if (EqualsFoldingAscii(row.CarPath, carPath)) return row.Row();
        }
    }
    if (const CarCatalogueRow* row = FindCatalogueRow(carPath)) return row->Coefficients;
    return kUnmatchedCarRow;
}

EngineStatus FfbEngine::CopyStatus() {
    std::lock_guard guard(statusLock);
    return status;
}

void FfbEngine::Start(const EngineSettings& current, WindowHandle window, DeviceGuid device) {
    StartWith<EnginePlatform>(current, window, device);
}

void FfbEngine::Stop() {
    recorder.Stop();
    stopRequested.store(true);
    if (thread.joinable()) thread.join();
}

bool FfbEngine::BeginRecording(const std::wstring& path, const std::wstring& profileName) {
    const EngineStatus now = CopyStatus();
    if (!running.load() || !now.connected || !now.onTrack) return false;
    const EngineSettings current = CopySettings();
    const CarRow row = ResolveCarRow(now.carPath, current.UseCarSpecificSettings);
    const RecordingHeader header =
        MakeRecordingHeader(now.carPath, now.driverName, profileName, current, row, WallClockMilliseconds());
    return recorder.Start(path, header);
}

void FfbEngine::UpdateStatus(bool isConnected, bool isOnTrack, std::wstring_view carPath,
                             std::wstring_view driverName, int32_t driverUserId, bool driverNameKnown) {
    std::lock_guard guard(statusLock);
    status.connected = isConnected;
    if (isConnected && isOnTrack != status.onTrack) ++status.onTrackChangeCount;
    status.onTrack = isOnTrack;
    // assign() reuses the strings' capacity: no allocation once they have held a name this long.
    status.carPath.assign(carPath.empty() ? std::wstring_view(L"generic") : carPath);
    status.driverName.assign(driverName.empty() ? std::wstring_view(L"unknown") : driverName);
    status.driverUserId = driverUserId;
    status.driverNameKnown = driverNameKnown;
    if (!isConnected) status.clippedPercent = 0.0f;
}

float FfbEngine::ComputeCrashGain(const TelemetryFrame& frame, const EngineSettings& tickSettings, int64_t now) {
    return veltor::ComputeCrashGain(frame, tickSettings, now, crashHoldUntil);
}

void FfbEngine::MirrorOutputFailures(uint32_t count, int32_t code) {
    std::lock_guard guard(statusLock);
    status.outputFailureCount = count;
    status.outputFailureCode = static_cast<uint32_t>(code);
}

}  // namespace veltor
