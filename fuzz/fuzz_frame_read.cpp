// Frame extraction over an arbitrary block, as a hostile or torn mapping would present it: the client
// attaches the bytes, looks its variables up, reads a frame and copies the session-info text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "telemetry/IrsdkClient.h"
#include "telemetry/SessionInfoScanner.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    veltor::IrsdkClient client;
    client.AttachBlock(data, size);
    veltor::TelemetryFrame frame;
    if (client.ReadFrame(frame)) {
        if (frame.valid != 1 || frame.torqueSampleCount < 1 || frame.torqueSampleCount > 6 ||
            frame.shockSampleCount < 0 || frame.shockSampleCount > 6 || frame.cfShockSampleCount > 6) {
            __builtin_trap();
        }
    }
    std::string text;
    veltor::SessionIdentity identity;
    if (client.CopySessionInfo(text)) veltor::ScanSessionInfo(text.data(), text.size(), identity);
    return 0;
}
