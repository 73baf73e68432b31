#pragma once
#include <cstddef>
#include <cstdint>

// The platform operations the telemetry client needs: the simulator's named event and mapping, and its
// broadcast. The Windows build links SimulatorLink_win32.cpp, host builds the in-process twin.
namespace veltor::link {

using Handle = void*;

enum class WaitResult { Signalled, TimedOut, Failed };

// Opens "Local\IRSDKDataValidEvent" for waiting only; null when it does not exist.
Handle OpenDataValidEvent();
// Opens "Local\IRSDKMemMapFileName" for reading; null when it does not exist.
Handle OpenTelemetryMapping();
// Maps the whole object read-only. `size` receives the bytes that may be read from the returned base.
const uint8_t* MapTelemetryView(Handle mapping, size_t& size);
void UnmapTelemetryView(const uint8_t* base);
void CloseLinkHandle(Handle handle);
WaitResult WaitForEvent(Handle event, uint32_t timeoutMilliseconds);

}  // namespace veltor::link

namespace veltor {
// The simulator's maximum-force command: newton metres × 65536. Safe from any thread.
void BroadcastMaxForce(int32_t force16_16);
}  // namespace veltor
