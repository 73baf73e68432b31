#pragma once
#include <string>
#include <string_view>

#include "update/VersionText.h"

namespace veltor {

// What the update server offers. The manifest's format leaves the two hashes optional; FetchManifest takes
// none without both.
struct UpdateManifest {
    bool Valid = false;
    VersionNumbers VersionParts{};
    std::wstring Version;
    std::wstring AppPath;
    std::wstring AnalyzerPath;
    std::wstring Notes;
    std::wstring AppSha256;       // 64 hex digits of the new program's SHA-256
    std::wstring AnalyzerSha256;  // the same for the new analyzer
};

// The manifest's text, UTF-8 JSON with string values. Valid needs a version of four numbers, both paths,
// and each hash that is given to be 64 hex digits.
UpdateManifest ParseManifest(const std::string& text);

// A forward scan, not a JSON parser: the bytes between the first two quotes behind the colon behind the
// first "key" in quotes. Escapes stay as they are; every miss gives an empty text.
std::wstring JsonStringValue(const std::string& text, std::string_view key);

bool IsSha256Hex(std::wstring_view text);

}  // namespace veltor
