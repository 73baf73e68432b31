#include "update/Sha256.h"

namespace veltor {

int HexDigitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

bool MatchesSha256(const std::vector<uint8_t>& bytes, const std::wstring& expectedHex) {
    if (expectedHex.empty()) return true;
    Sha256Digest digest{};
    if (expectedHex.size() != 2 * digest.size() || !Sha256(bytes.data(), bytes.size(), digest)) return false;
    for (size_t i = 0; i < digest.size(); ++i) {
        const int high = HexDigitValue(expectedHex[2 * i]);
        const int low = HexDigitValue(expectedHex[2 * i + 1]);
        if (high < 0 || low < 0 || digest[i] != high * 16 + low) return false;
    }
    return true;
}

}  // namespace veltor
