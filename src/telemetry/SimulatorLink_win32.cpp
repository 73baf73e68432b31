#include <windows.h>

#include <mutex>

#include "telemetry/SimulatorLink.h"

namespace veltor {
namespace link {

Handle OpenDataValidEvent() { return OpenEventW(SYNCHRONIZE, FALSE, L"Local\\IRSDKDataValidEvent"); }

Handle OpenTelemetryMapping() { return OpenFileMappingW(FILE_MAP_READ, FALSE, L"Local\\IRSDKMemMapFileName"); }

const uint8_t* MapTelemetryView(Handle mapping, size_t& size) {
    void* view = MapViewOfFile(static_cast<HANDLE>(mapping), FILE_MAP_READ, 0, 0, 0);
    if (view == nullptr) return nullptr;
    // The view covers whole pages of the section; what lies beyond its end reads as zero.
    MEMORY_BASIC_INFORMATION info{};
    size = VirtualQuery(view, &info, sizeof info) == sizeof info ? info.RegionSize : 0;
    return static_cast<const uint8_t*>(view);
}

void UnmapTelemetryView(const uint8_t* base) { UnmapViewOfFile(base); }

void CloseLinkHandle(Handle handle) { CloseHandle(static_cast<HANDLE>(handle)); }

WaitResult WaitForEvent(Handle event, uint32_t timeoutMilliseconds) {
    switch (WaitForSingleObject(static_cast<HANDLE>(event), timeoutMilliseconds)) {
        case WAIT_OBJECT_0: return WaitResult::Signalled;
        case WAIT_TIMEOUT: return WaitResult::TimedOut;
        default: return WaitResult::Failed;
    }
}

}  // namespace link

void BroadcastMaxForce(int32_t force16_16) {
    static UINT message = 0;
    static std::once_flag registered;
    std::call_once(registered, [] { message = RegisterWindowMessageW(L"IRSDK_BROADCASTMSG"); });
    if (message == 0) return;
    // Low word 11: the force-feedback command; high word 0: its maximum-force sub-command.
    SendNotifyMessageW(HWND_BROADCAST, message, MAKEWPARAM(11, 0), static_cast<LPARAM>(force16_16));
}

}  // namespace veltor
