#include <windows.h>
#include <winhttp.h>

#include "update/HttpsGet.h"
#include "update/VersionText.h"

namespace veltor {
namespace {

constexpr int kResolveTimeoutMs = 5000;
constexpr int kConnectTimeoutMs = 5000;
constexpr int kSendTimeoutMs = 15000;
constexpr int kReceiveTimeoutMs = 15000;

// Closes what is open, innermost first.
void CloseAll(HINTERNET request, HINTERNET connection, HINTERNET session) {
    if (request != nullptr) WinHttpCloseHandle(request);
    if (connection != nullptr) WinHttpCloseHandle(connection);
    if (session != nullptr) WinHttpCloseHandle(session);
}

// A read that fails or ends early keeps what came: a cut body counts as received.
void ReadBody(HINTERNET request, std::vector<uint8_t>& body) {
    for (;;) {
        DWORD available = 0;
        if (!WinHttpQueryDataAvailable(request, &available) || available == 0) return;
        const size_t start = body.size();
        body.resize(start + available);
        DWORD read = 0;
        if (!WinHttpReadData(request, body.data() + start, available, &read) || read == 0) {
            body.resize(start);
            return;
        }
        body.resize(start + read);
    }
}

}  // namespace

HttpResult HttpsGet(const std::wstring& host, const std::wstring& pathAndQuery) {
    HttpResult result;
    const std::wstring userAgent = L"Veltor Updater/" + CurrentVersionText();
    HINTERNET session = WinHttpOpen(userAgent.c_str(), WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                                    WINHTTP_NO_PROXY_BYPASS, 0);
    if (session == nullptr) {
        result.Error = L"Could not initialize HTTPS client.";
        return result;
    }
    WinHttpSetTimeouts(session, kResolveTimeoutMs, kConnectTimeoutMs, kSendTimeoutMs, kReceiveTimeoutMs);
    HINTERNET connection = WinHttpConnect(session, host.c_str(), INTERNET_DEFAULT_HTTPS_PORT, 0);
    if (connection == nullptr) {
        CloseAll(nullptr, nullptr, session);
        result.Error = L"Could not connect to the update server.";
        return result;
    }
    HINTERNET request = WinHttpOpenRequest(connection, L"GET", pathAndQuery.c_str(), nullptr, WINHTTP_NO_REFERER,
                                           WINHTTP_DEFAULT_ACCEPT_TYPES, WINHTTP_FLAG_SECURE);
    if (request == nullptr) {
        CloseAll(nullptr, connection, session);
        result.Error = L"Could not create the update request.";
        return result;
    }
    // Certificate failures end here too; no flag ever relaxes the server's certificate check.
    if (!WinHttpSendRequest(request, WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, 0) ||
        !WinHttpReceiveResponse(request, nullptr)) {
        CloseAll(request, connection, session);
        result.Error = L"The update server did not respond.";
        return result;
    }
    DWORD status = 0;
    DWORD statusSize = sizeof status;
    WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX,
                        &status, &statusSize, WINHTTP_NO_HEADER_INDEX);
    result.StatusCode = status;
    ReadBody(request, result.Body);
    CloseAll(request, connection, session);
    result.Ok = result.StatusCode == 200;
    if (!result.Ok && result.Error.empty()) {
        result.Error = L"The update server returned HTTP " + std::to_wstring(result.StatusCode) + L".";
    }
    return result;
}

}  // namespace veltor
