#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

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

std::string_view TrimField(std::string_view text);
// -1 when the trimmed line does not begin with `key`; else the decimal value after it.
int32_t ParseIntField(std::string_view line, std::string_view key);
bool ParseTextField(std::string_view line, std::string_view key, std::string& out);
std::wstring ToWideText(const std::string& text);

}  // namespace veltor
