#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "update/Sha256.h"

namespace veltor {

using EcdsaP256Signature = std::array<uint8_t, 64>;  // r ‖ s, each 32 bytes big-endian
using EcdsaP256PublicKey = std::array<uint8_t, 64>;  // X ‖ Y of the point, each 32 bytes big-endian

// Windows: CNG (BCryptImportKeyPair with an ECC public blob, BCryptVerifySignature); the host twin:
// OpenSSL's libcrypto. True only when the platform says that `signature` over `digest` was made with the
// private half of `key`; any failure of the platform's own is false.
bool VerifyEcdsaP256(const Sha256Digest& digest, const EcdsaP256Signature& signature, const EcdsaP256PublicKey& key);

// The signature file beside the manifest: one line, the base64 of r ‖ s (88 characters, the last two "="),
// with or without LF or CR LF behind it. Nothing else is accepted, nor a base64 text that encodes other
// bits than its canonical form.
bool DecodeSignatureLine(std::string_view line, EcdsaP256Signature& signature);
// The line as scripts/package writes it, without its line end.
std::string SignatureLine(const EcdsaP256Signature& signature);
// 128 hex digits in either case, X ‖ Y; false for anything else, the empty text of a build without a key too.
bool DecodePublicKeyHex(std::string_view hex, EcdsaP256PublicKey& key);

// True when `signatureFile` holds a signature of exactly the bytes of `manifest` by the private half of `key`.
bool IsSignedBy(const std::vector<uint8_t>& manifest, const std::vector<uint8_t>& signatureFile,
                const EcdsaP256PublicKey& key);

}  // namespace veltor
