// Version texts, one byte per character: whatever parses, its four numbers written back parse the same.
#include <cstddef>
#include <cstdint>
#include <string>

#include "update/VersionText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::wstring text(data, data + size);
    veltor::VersionNumbers parts{};
    if (!veltor::ParseVersion(text, parts)) return 0;
    std::wstring written;
    for (const int32_t part : parts) written += (written.empty() ? L"" : L".") + std::to_wstring(part);
    veltor::VersionNumbers again{};
    if (!veltor::ParseVersion(written, again) || again != parts) __builtin_trap();
    return 0;
}
