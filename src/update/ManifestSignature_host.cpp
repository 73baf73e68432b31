#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <algorithm>

#include "update/ManifestSignature.h"

namespace veltor {
namespace {

// The point X ‖ Y as an EC key of P-256; null when it is not a point of the curve.
EVP_PKEY* ImportPublicKey(const EcdsaP256PublicKey& key) {
    unsigned char point[1 + std::tuple_size_v<EcdsaP256PublicKey>] = {0x04};  // uncompressed
    std::copy(key.begin(), key.end(), point + 1);
    char group[] = "prime256v1";
    const OSSL_PARAM params[] = {OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, group, 0),
                                 OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point, sizeof point),
                                 OSSL_PARAM_construct_end()};
    EVP_PKEY_CTX* context = EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr);
    EVP_PKEY* imported = nullptr;
    if (context == nullptr || EVP_PKEY_fromdata_init(context) != 1 ||
        EVP_PKEY_fromdata(context, &imported, EVP_PKEY_PUBLIC_KEY, const_cast<OSSL_PARAM*>(params)) != 1) {
        imported = nullptr;
    }
    EVP_PKEY_CTX_free(context);
    return imported;
}

// r ‖ s in the DER form that OpenSSL verifies; empty if it could not be made.
std::vector<unsigned char> DerSignature(const EcdsaP256Signature& signature) {
    ECDSA_SIG* pair = ECDSA_SIG_new();
    BIGNUM* r = BN_bin2bn(signature.data(), 32, nullptr);
    BIGNUM* s = BN_bin2bn(signature.data() + 32, 32, nullptr);
    std::vector<unsigned char> der;
    if (pair != nullptr && r != nullptr && s != nullptr && ECDSA_SIG_set0(pair, r, s) == 1) {
        r = s = nullptr;  // owned by the pair now
        const int size = i2d_ECDSA_SIG(pair, nullptr);
        if (size > 0) {
            der.resize(static_cast<size_t>(size));
            unsigned char* out = der.data();
            if (i2d_ECDSA_SIG(pair, &out) != size) der.clear();
        }
    }
    BN_free(r);
    BN_free(s);
    ECDSA_SIG_free(pair);
    return der;
}

}  // namespace

bool VerifyEcdsaP256(const Sha256Digest& digest, const EcdsaP256Signature& signature, const EcdsaP256PublicKey& key) {
    EVP_PKEY* publicKey = ImportPublicKey(key);
    const std::vector<unsigned char> der = DerSignature(signature);
    EVP_PKEY_CTX* context = publicKey != nullptr ? EVP_PKEY_CTX_new(publicKey, nullptr) : nullptr;
    // EVP_PKEY_verify answers 1 for a signature that holds, 0 or less for every other outcome.
    const bool verified = context != nullptr && !der.empty() && EVP_PKEY_verify_init(context) == 1 &&
                          EVP_PKEY_verify(context, der.data(), der.size(), digest.data(), digest.size()) == 1;
    EVP_PKEY_CTX_free(context);
    EVP_PKEY_free(publicKey);
    return verified;
}

}  // namespace veltor
