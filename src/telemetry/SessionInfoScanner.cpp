#include "telemetry/SessionInfoScanner.h"

namespace veltor {

// Placeholder until the line scanner lands: no identity is ever found, so the engine keeps its defaults.
bool ScanSessionInfo(const char*, size_t, SessionIdentity&) { return false; }

}  // namespace veltor
