#include <windows.h>
#include <bcrypt.h>

#include <cstring>

#include "TestSignature.h"

namespace veltor::test {

bool SignEcdsaP256(const Sha256Digest& digest, const EcdsaP256PrivateKey& privateKey,
                   const EcdsaP256PublicKey& publicKey, EcdsaP256Signature& signature) {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_ECDSA_P256_ALGORITHM, nullptr, 0) != 0) return false;
    // BCRYPT_ECCPRIVATE_BLOB: the header, then X, Y and d of cbKey bytes each.
    const BCRYPT_ECCKEY_BLOB header{BCRYPT_ECDSA_PRIVATE_P256_MAGIC, 32};
    UCHAR blob[sizeof header + 96];
    std::memcpy(blob, &header, sizeof header);
    std::memcpy(blob + sizeof header, publicKey.data(), publicKey.size());
    std::memcpy(blob + sizeof header + publicKey.size(), privateKey.data(), privateKey.size());
    BCRYPT_KEY_HANDLE key = nullptr;
    ULONG written = 0;
    const bool made =
        BCryptImportKeyPair(algorithm, nullptr, BCRYPT_ECCPRIVATE_BLOB, &key, blob, sizeof blob, 0) == 0 &&
        BCryptSignHash(key, nullptr, const_cast<PUCHAR>(digest.data()), static_cast<ULONG>(digest.size()),
                       signature.data(), static_cast<ULONG>(signature.size()), &written, 0) == 0 &&
        written == signature.size();
    if (key != nullptr) BCryptDestroyKey(key);
    BCryptCloseAlgorithmProvider(algorithm, 0);
    return made;
}

}  // namespace veltor::test
