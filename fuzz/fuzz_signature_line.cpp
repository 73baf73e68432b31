// The signature file beside the manifest, from a hostile server: any bytes decode or are refused, and a
// line that decodes is the one canonical spelling of its 64 bytes.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "update/ManifestSignature.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    veltor::EcdsaP256Signature signature{};
    if (!veltor::DecodeSignatureLine(line, signature)) return 0;
    const std::string_view withoutEnd = line.substr(0, line.find_first_of("\r\n"));
    if (veltor::SignatureLine(signature) != withoutEnd) __builtin_trap();
    return 0;
}
