#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace veltor {

// The outcome of one GET. A body cut short by a failing read still counts as received.
struct HttpResult {
    bool Ok = false;  // the server answered with status 200
    uint32_t StatusCode = 0;
    std::vector<uint8_t> Body;
    std::wstring Error;  // for the session log, without a prefix
};

// One synchronous HTTPS GET on port 443 with a session of its own; blocks until the server has answered
// or a time-out has passed. Windows only: WinHTTP.
HttpResult HttpsGet(const std::wstring& host, const std::wstring& pathAndQuery);

}  // namespace veltor
