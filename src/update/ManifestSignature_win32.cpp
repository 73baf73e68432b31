#include <windows.h>
#include <bcrypt.h>

#include <cstring>

#include "update/ManifestSignature.h"

namespace veltor {
namespace {

// Success only, not every status that NT_SUCCESS lets through: an answer like "not implemented" (Wine
// without GnuTLS) must never read as a signature that holds.
constexpr NTSTATUS kStatusSuccess = 0;

}  // namespace

bool VerifyEcdsaP256(const Sha256Digest& digest, const EcdsaP256Signature& signature, const EcdsaP256PublicKey& key) {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_ECDSA_P256_ALGORITHM, nullptr, 0) != kStatusSuccess) {
        return false;
    }
    // BCRYPT_ECCPUBLIC_BLOB: the header, then X and Y of cbKey bytes each.
    const BCRYPT_ECCKEY_BLOB header{BCRYPT_ECDSA_PUBLIC_P256_MAGIC, 32};
    UCHAR blob[sizeof header + std::tuple_size_v<EcdsaP256PublicKey>];
    std::memcpy(blob, &header, sizeof header);
    std::memcpy(blob + sizeof header, key.data(), key.size());
    BCRYPT_KEY_HANDLE keyHandle = nullptr;
    bool verified = BCryptImportKeyPair(algorithm, nullptr, BCRYPT_ECCPUBLIC_BLOB, &keyHandle, blob, sizeof blob, 0) ==
                    kStatusSuccess;
    const ULONG digestSize = static_cast<ULONG>(digest.size());
    const ULONG signatureSize = static_cast<ULONG>(signature.size());
    verified = verified &&
               BCryptVerifySignature(keyHandle, nullptr, const_cast<PUCHAR>(digest.data()), digestSize,
                                     const_cast<PUCHAR>(signature.data()), signatureSize, 0) == kStatusSuccess;
    if (keyHandle != nullptr) BCryptDestroyKey(keyHandle);
    BCryptCloseAlgorithmProvider(algorithm, 0);
    return verified;
}

}  // namespace veltor
