// The update manifest from a hostile server: any bytes end in a valid or an invalid manifest, and a valid
// one carries what the update flow relies on.
#include <cstddef>
#include <cstdint>
#include <string>

#include "update/UpdateManifest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const veltor::UpdateManifest manifest = veltor::ParseManifest(std::string(reinterpret_cast<const char*>(data), size));
    veltor::VersionNumbers parts{};
    const bool hashesUsable = (manifest.AppSha256.empty() || manifest.AppSha256.size() == 64) &&
                              (manifest.AnalyzerSha256.empty() || manifest.AnalyzerSha256.size() == 64);
    if (manifest.Valid && (!veltor::ParseVersion(manifest.Version, parts) || parts != manifest.VersionParts ||
                           manifest.AppPath.empty() || manifest.AnalyzerPath.empty() || !hashesUsable)) {
        __builtin_trap();
    }
    return 0;
}
