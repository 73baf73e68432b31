#include "update/UpdateManifest.h"

#include "platform/TextConversion.h"
#include "update/Sha256.h"

namespace veltor {

UpdateManifest ParseManifest(const std::string& text) {
    UpdateManifest manifest;
    manifest.Version = JsonStringValue(text, "version");
    manifest.AppPath = JsonStringValue(text, "appPath");
    manifest.AnalyzerPath = JsonStringValue(text, "analyzerPath");
    manifest.Notes = JsonStringValue(text, "notes");
    manifest.AppSha256 = JsonStringValue(text, "appSha256");
    manifest.AnalyzerSha256 = JsonStringValue(text, "analyzerSha256");
    // A hash that is there but malformed could not protect its download: the manifest is refused.
    const bool hashesUsable = (manifest.AppSha256.empty() || IsSha256Hex(manifest.AppSha256)) &&
                              (manifest.AnalyzerSha256.empty() || IsSha256Hex(manifest.AnalyzerSha256));
    manifest.Valid = ParseVersion(manifest.Version, manifest.VersionParts) && !manifest.AppPath.empty() &&
                     !manifest.AnalyzerPath.empty() && hashesUsable;
    return manifest;
}

std::wstring JsonStringValue(const std::string& text, std::string_view key) {
    std::string quotedKey(1, '"');
    quotedKey.append(key).push_back('"');
    const size_t keyAt = text.find(quotedKey);
    if (keyAt == std::string::npos) return {};
    const size_t colon = text.find(':', keyAt + quotedKey.size());
    if (colon == std::string::npos) return {};
    const size_t open = text.find('"', colon + 1);
    if (open == std::string::npos) return {};
    const size_t close = text.find('"', open + 1);
    if (close == std::string::npos) return {};
    return Utf8ToWide(text.substr(open + 1, close - open - 1));
}

bool IsSha256Hex(std::wstring_view text) {
    if (text.size() != 64) return false;
    for (const wchar_t c : text) {
        if (HexDigitValue(c) < 0) return false;
    }
    return true;
}

}  // namespace veltor
