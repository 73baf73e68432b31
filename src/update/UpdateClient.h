#pragma once
#include <string>

#include "update/HttpsGet.h"
#include "update/ManifestSignature.h"
#include "update/Sha256.h"
#include "update/UpdateManifest.h"
#include "update/UpdatePath.h"
#include "update/VersionText.h"
#include "update/WriteBytes.h"

namespace veltor {

// The update server's host name, a build setting (VELTOR_UPDATE_HOST); always HTTPS on port 443.
extern const wchar_t* const UpdateHost;
inline constexpr wchar_t UpdateManifestPath[] = L"/uploads/veltor/commercial/latest.json";
// The release's public key, a build setting (VELTOR_UPDATE_PUBLIC_KEY): 128 hex digits, or empty.
extern const char* const UpdatePublicKey;

inline constexpr wchar_t kManifestInvalidError[] = L"the update manifest is invalid.";
inline constexpr wchar_t kManifestNotSignedError[] = L"the update manifest is not signed with the release key.";
inline constexpr wchar_t kCurrentVersionInvalidError[] = L"the current app version is invalid.";
inline constexpr wchar_t kDownloadMismatchError[] = L"the download does not match the manifest.";
inline constexpr wchar_t kDownloadNotWrittenError[] = L"Could not write the downloaded file.";

// Asks the update server for its manifest, tagged with the current version, and its signature, and judges
// them. True when the check itself worked; then `updateAvailable` tells whether the offer is strictly newer.
// The server's word counts only once the release key's signature holds over the manifest's exact bytes,
// and the manifest names the SHA-256 of both files: those hashes are what the downloads are held to. `get`
// has the shape of HttpsGet: the product passes HttpsGet, tests a server of their own.
template <typename Get>
bool FetchManifest(Get&& get, UpdateManifest& manifest, bool& updateAvailable, std::wstring& error) {
    updateAvailable = false;
    EcdsaP256PublicKey key{};
    // A build without a key could trust no answer: it does not ask.
    if (!DecodePublicKeyHex(UpdatePublicKey, key)) {
        error = kManifestNotSignedError;
        return false;
    }
    const std::wstring host(UpdateHost);
    const HttpResult result = get(host, AddVersionQuery(UpdateManifestPath, CurrentVersionText()));
    if (!result.Ok) {
        error = result.Error;
        return false;
    }
    const std::wstring signaturePath = std::wstring(UpdateManifestPath) + L".sig";  // beside the manifest
    const HttpResult signature = get(host, AddVersionQuery(signaturePath, CurrentVersionText()));
    // A server that answered without the signature (404) has none to give; one that did not answer says so.
    if (!signature.Ok && signature.StatusCode == 0) {
        error = signature.Error;
        return false;
    }
    if (!signature.Ok || !IsSignedBy(result.Body, signature.Body, key)) {
        error = kManifestNotSignedError;
        return false;
    }
    manifest = ParseManifest(std::string(result.Body.begin(), result.Body.end()));
    if (!manifest.Valid) {
        error = kManifestInvalidError;
        return false;
    }
    if (manifest.AppSha256.empty() || manifest.AnalyzerSha256.empty()) {
        error = kManifestNotSignedError;
        return false;
    }
    VersionNumbers current{};
    if (!ParseVersion(CurrentVersionText(), current)) {
        error = kCurrentVersionInvalidError;
        return false;
    }
    updateAvailable = IsNewerVersion(current, manifest.VersionParts);
    return true;
}

inline bool FetchManifest(UpdateManifest& manifest, bool& updateAvailable, std::wstring& error) {
    return FetchManifest(HttpsGet, manifest, updateAvailable, error);
}

// Downloads one update file from the update server to `target`. A hash from the manifest must match, or
// nothing is written. On failure `error` holds the text that follows the stage's prefix in the log.
template <typename Get>
bool DownloadUpdateFile(Get&& get, const std::wstring& pathAndQuery, const std::wstring& expectedSha256,
                        const std::wstring& target, std::wstring& error) {
    const HttpResult result = get(std::wstring(UpdateHost), pathAndQuery);
    if (result.Ok && !MatchesSha256(result.Body, expectedSha256)) {
        error = kDownloadMismatchError;
        return false;
    }
    if (result.Ok && WriteBytes(target, result.Body)) return true;
    error = result.Error.empty() ? std::wstring(kDownloadNotWrittenError) : result.Error;
    return false;
}

inline bool DownloadUpdateFile(const std::wstring& pathAndQuery, const std::wstring& expectedSha256,
                               const std::wstring& target, std::wstring& error) {
    return DownloadUpdateFile(HttpsGet, pathAndQuery, expectedSha256, target, error);
}

}  // namespace veltor
