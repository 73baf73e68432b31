#include "engine/FfbEngine.h"

#include "engine/CrashProtection.h"
#include "engine/RecordingHook.h"
#include "settings/CarCatalogue.h"

namespace veltor {
namespace {

std::wstring_view StatusText(std::wstring_view text, std::wstring_view fallback) {
    std::wstring_view kept = (text.empty() ? fallback : text).substr(0, kStatusTextCapacity);
    // Where UTF-16 is cut after the first half of a surrogate pair, that half goes too.
    if (kept.size() == kStatusTextCapacity && kept.back() >= 0xD800 && kept.back() <= 0xDBFF) kept.remove_suffix(1);
    return kept;
}

}  // namespace

FfbEngine::FfbEngine() {
    status.carPath.reserve(kStatusTextCapacity);
    status.driverName.reserve(kStatusTextCapacity);
}

void FfbEngine::PublishSettings(const EngineSettings& newSettings) {
    std::lock_guard guard(settingsLock);
    settings = newSettings;
}

EngineSettings FfbEngine::CopySettings() {
    std::lock_guard guard(settingsLock);
    return settings;
}

void FfbEngine::PublishOverrides(const std::vector<CarCoefficients>& newOverrides) {
    std::vector<CarCoefficients> fresh = newOverrides;
    {
        std::lock_guard guard(settingsLock);
        overrides.swap(fresh);
        ++overridesVersion;
    }
}  // the old list is freed here, outside the lock

CarRow FfbEngine::ResolveCarRow(std::wstring_view carPath, bool useCarSpecific) {
    CarRowMemo fresh;
    return ResolveCarRow(carPath, useCarSpecific, fresh);
}

// The first match wins: an override, then the catalogue, then the set for an unknown car.
CarRow FfbEngine::ResolveCarRow(std::wstring_view carPath, bool useCarSpecific, CarRowMemo& memo) {
    if (!useCarSpecific) return kCarIndependentRow;
    {
        std::lock_guard guard(settingsLock);
        if (memo.valid && memo.overridesVersion == overridesVersion) return memo.row;
        memo.valid = true;
        memo.overridesVersion = overridesVersion;
        for (const CarCoefficients& row : overrides) {
            if (EqualsFoldingAscii(row.CarPath, carPath)) return memo.row = row.Row();
        }
    }
    const CarCatalogueRow* row = FindCatalogueRow(carPath);
    return memo.row = row != nullptr ? row->Coefficients : kUnmatchedCarRow;
}

EngineStatus FfbEngine::CopyStatus() {
    EngineStatus copy;
    copy.carPath.reserve(kStatusTextCapacity);
    copy.driverName.reserve(kStatusTextCapacity);
    {
        std::lock_guard guard(statusLock);
        copy = status;  // the texts fit the room reserved above
    }
    return copy;
}

bool FfbEngine::RecordTo(const std::wstring& path, const RecordingHeader& header, int64_t startTime) {
    return recorder.Start(path, header, startTime);
}

uint32_t FfbEngine::EndRecording() {
    const uint32_t dropped = recorder.DroppedSamples();
    recorder.Stop();
    return dropped;
}

void FfbEngine::RecordTick(const TickSignals& tick, int64_t (*steadyNow)()) { veltor::RecordTick(recorder, tick, steadyNow); }

void FfbEngine::BeginStint() { clipSamples = clipOver = outSamples = outNonZero = outPeak = 0; }

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
    status.carPath.assign(StatusText(carPath, L"generic"));  // within the reserved room
    status.driverName.assign(StatusText(driverName, L"unknown"));
    status.driverUserId = driverUserId;
    status.driverNameKnown = driverNameKnown;
    if (!isConnected) status.clippedPercent = 0.0f;
}

float FfbEngine::ComputeCrashGain(const TelemetryFrame& frame, const EngineSettings& tickSettings, int64_t now) {
    return veltor::ComputeCrashGain(frame, tickSettings, now, crashHoldUntil);
}

void FfbEngine::ReportStall() {
    std::lock_guard guard(statusLock);
    ++status.telemetryStallCount;
}

void FfbEngine::MirrorOutputFailures(uint32_t count, int32_t code) {
    std::lock_guard guard(statusLock);
    status.outputFailureCount = count;
    status.outputFailureCode = static_cast<uint32_t>(code);
}

}  // namespace veltor
