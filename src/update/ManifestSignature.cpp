#include "update/ManifestSignature.h"

namespace veltor {
namespace {

constexpr char kBase64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
// 64 bytes are 21 groups of three and one byte more: 86 digits, the last carrying 4 unused bits, and "==".
constexpr size_t kSignatureDigits = 86;

int Base64Value(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
}

}  // namespace

bool DecodeSignatureLine(std::string_view line, EcdsaP256Signature& signature) {
    if (line.ends_with("\r\n")) {
        line.remove_suffix(2);
    } else if (line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    if (line.size() != kSignatureDigits + 2 || line.substr(kSignatureDigits) != "==") return false;
    EcdsaP256Signature decoded{};
    uint32_t bits = 0;  // the digits' bits not yet taken into a byte, at most 12
    int bitCount = 0;
    size_t next = 0;
    for (const char c : line.substr(0, kSignatureDigits)) {
        const int value = Base64Value(c);
        if (value < 0) return false;
        bits = (bits << 6 | static_cast<uint32_t>(value)) & 0xFFF;
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            decoded[next++] = static_cast<uint8_t>(bits >> bitCount);
        }
    }
    // The last digit's unused bits are zero in the canonical text: no second spelling of a signature.
    if ((bits & ((1u << bitCount) - 1)) != 0) return false;
    signature = decoded;
    return true;
}

std::string SignatureLine(const EcdsaP256Signature& signature) {
    std::string line;
    for (size_t at = 0; at < signature.size(); at += 3) {
        const size_t left = signature.size() - at;
        const uint32_t group = uint32_t{signature[at]} << 16 | (left > 1 ? uint32_t{signature[at + 1]} << 8 : 0) |
                               (left > 2 ? uint32_t{signature[at + 2]} : 0);
        for (size_t digit = 0; digit < 4; ++digit) {
            line += digit <= left ? kBase64Digits[(group >> (18 - 6 * digit)) & 63] : '=';
        }
    }
    return line;
}

bool DecodePublicKeyHex(std::string_view hex, EcdsaP256PublicKey& key) {
    if (hex.size() != 2 * key.size()) return false;
    EcdsaP256PublicKey decoded{};
    for (size_t i = 0; i < decoded.size(); ++i) {
        const int high = HexDigitValue(static_cast<unsigned char>(hex[2 * i]));
        const int low = HexDigitValue(static_cast<unsigned char>(hex[2 * i + 1]));
        if (high < 0 || low < 0) return false;
        decoded[i] = static_cast<uint8_t>(high * 16 + low);
    }
    key = decoded;
    return true;
}

bool IsSignedBy(const std::vector<uint8_t>& manifest, const std::vector<uint8_t>& signatureFile,
                const EcdsaP256PublicKey& key) {
    const std::string_view line(reinterpret_cast<const char*>(signatureFile.data()), signatureFile.size());
    EcdsaP256Signature signature{};
    Sha256Digest digest{};
    return DecodeSignatureLine(line, signature) && Sha256(manifest.data(), manifest.size(), digest) &&
           VerifyEcdsaP256(digest, signature, key);
}

}  // namespace veltor
