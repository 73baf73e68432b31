#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace veltor {

// Who drives which car, from the simulator's session-info text.
struct SessionIdentity {
    std::wstring carPath = L"generic";
    std::wstring driverName = L"unknown";
    int32_t driverUserId = 0;
    bool driverNameKnown = true;
};

// Scans exactly `length` bytes of `text`. On false the identity is left as it was.
bool ScanSessionInfo(const char* text, size_t length, SessionIdentity& identity);

}  // namespace veltor
