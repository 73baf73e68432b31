#include "TestSignature.h"

namespace veltor::test {
namespace {

// 32 bytes from 64 hex digits that the build wrote.
EcdsaP256PrivateKey Scalar(std::string_view hex) {
    EcdsaP256PrivateKey bytes{};
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<uint8_t>(std::stoi(std::string(hex.substr(2 * i, 2)), nullptr, 16));
    }
    return bytes;
}

}  // namespace

std::string Sha256Hex(std::string_view bytes) {
    Sha256Digest digest{};
    Sha256(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), digest);
    std::string hex;
    for (const uint8_t b : digest) hex += std::string{"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]};
    return hex;
}

std::string SignatureFile(std::string_view manifest, std::string_view key) {
    EcdsaP256PublicKey publicKey{};
    Sha256Digest digest{};
    EcdsaP256Signature signature{};
    const bool signedIt = DecodePublicKeyHex(PublicHalf(key), publicKey) &&
                          Sha256(reinterpret_cast<const uint8_t*>(manifest.data()), manifest.size(), digest) &&
                          SignEcdsaP256(digest, Scalar(key), publicKey, signature);
    return signedIt ? SignatureLine(signature) + "\n" : std::string();
}

}  // namespace veltor::test
