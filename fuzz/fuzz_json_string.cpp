// The manifest's string scanner over arbitrary text and keys: the first byte gives the key's length, the
// key follows, the rest is the text. A value found is always a piece of the text behind the key.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/TextConversion.h"
#include "update/UpdateManifest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const size_t keyLength = data[0] % 16 < size - 1 ? data[0] % 16 : size - 1;
    const std::string key(reinterpret_cast<const char*>(data + 1), keyLength);
    const std::string text(reinterpret_cast<const char*>(data + 1 + keyLength), size - 1 - keyLength);
    const std::wstring value = veltor::JsonStringValue(text, key);
    if (!value.empty() && text.find(veltor::WideToUtf8(value), text.find("\"" + key + "\"")) == std::string::npos) {
        __builtin_trap();
    }
    return 0;
}
