// The session-info scan over arbitrary bytes: exactly `size` bytes are readable, as for a copy of the
// simulator's text, and any content must end in true or false.
#include <cstddef>
#include <cstdint>

#include "telemetry/SessionInfoScanner.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    veltor::SessionIdentity identity;
    if (veltor::ScanSessionInfo(reinterpret_cast<const char*>(data), size, identity) && identity.carPath.empty()) {
        __builtin_trap();  // a successful scan always names a car
    }
    return 0;
}
