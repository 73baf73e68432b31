#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "update/ManifestSignature.h"

// Signatures made the way the release makes them, with this build tree's throwaway keys.
namespace veltor::test {

// The two P-256 key pairs that tests/update/CMakeLists.txt makes at configure time, d ‖ X ‖ Y in hex: the
// release key, whose public half the loopback builds and the update unit tests carry, and anybody else's.
inline constexpr std::string_view kReleaseKey = VELTOR_TEST_RELEASE_KEY;
inline constexpr std::string_view kOtherKey = VELTOR_TEST_OTHER_KEY;
inline constexpr std::string_view PublicHalf(std::string_view key) { return key.substr(64); }

using EcdsaP256PrivateKey = std::array<uint8_t, 32>;  // d, big-endian

// Windows: CNG (BCryptImportKeyPair with an ECC private blob, BCryptSignHash); hosts: OpenSSL. False when
// the platform could not sign.
bool SignEcdsaP256(const Sha256Digest& digest, const EcdsaP256PrivateKey& privateKey,
                   const EcdsaP256PublicKey& publicKey, EcdsaP256Signature& signature);

// 64 lower-case hex digits of the SHA-256 of `bytes`, as a manifest names a file.
std::string Sha256Hex(std::string_view bytes);

// The signature file of `manifest` by `key` (d ‖ X ‖ Y in hex), as scripts/package writes it: one line and
// its LF. Empty when signing failed.
std::string SignatureFile(std::string_view manifest, std::string_view key);

}  // namespace veltor::test
