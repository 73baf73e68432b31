#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

#include <algorithm>
#include <vector>

#include "TestSignature.h"

namespace veltor::test {
namespace {

EVP_PKEY* ImportKeyPair(const EcdsaP256PrivateKey& privateKey, const EcdsaP256PublicKey& publicKey) {
    unsigned char point[65] = {0x04};  // uncompressed
    std::copy(publicKey.begin(), publicKey.end(), point + 1);
    BIGNUM* scalar = BN_bin2bn(privateKey.data(), static_cast<int>(privateKey.size()), nullptr);
    OSSL_PARAM_BLD* builder = OSSL_PARAM_BLD_new();
    OSSL_PARAM* params = nullptr;
    if (scalar != nullptr && builder != nullptr &&
        OSSL_PARAM_BLD_push_utf8_string(builder, OSSL_PKEY_PARAM_GROUP_NAME, "prime256v1", 0) == 1 &&
        OSSL_PARAM_BLD_push_octet_string(builder, OSSL_PKEY_PARAM_PUB_KEY, point, sizeof point) == 1 &&
        OSSL_PARAM_BLD_push_BN(builder, OSSL_PKEY_PARAM_PRIV_KEY, scalar) == 1) {
        params = OSSL_PARAM_BLD_to_param(builder);
    }
    EVP_PKEY_CTX* context = EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr);
    EVP_PKEY* pair = nullptr;
    if (params == nullptr || context == nullptr || EVP_PKEY_fromdata_init(context) != 1 ||
        EVP_PKEY_fromdata(context, &pair, EVP_PKEY_KEYPAIR, params) != 1) {
        pair = nullptr;
    }
    EVP_PKEY_CTX_free(context);
    OSSL_PARAM_free(params);
    OSSL_PARAM_BLD_free(builder);
    BN_free(scalar);
    return pair;
}

}  // namespace

bool SignEcdsaP256(const Sha256Digest& digest, const EcdsaP256PrivateKey& privateKey,
                   const EcdsaP256PublicKey& publicKey, EcdsaP256Signature& signature) {
    EVP_PKEY* keyPair = ImportKeyPair(privateKey, publicKey);
    EVP_PKEY_CTX* context = keyPair != nullptr ? EVP_PKEY_CTX_new(keyPair, nullptr) : nullptr;
    size_t size = 0;
    std::vector<unsigned char> der;
    bool made = context != nullptr && EVP_PKEY_sign_init(context) == 1 &&
                EVP_PKEY_sign(context, nullptr, &size, digest.data(), digest.size()) == 1;
    if (made) {
        der.resize(size);
        made = EVP_PKEY_sign(context, der.data(), &size, digest.data(), digest.size()) == 1;
    }
    // The DER pair as r ‖ s, each padded to 32 bytes.
    const unsigned char* in = der.data();
    ECDSA_SIG* rs = made ? d2i_ECDSA_SIG(nullptr, &in, static_cast<long>(size)) : nullptr;
    made = rs != nullptr && BN_bn2binpad(ECDSA_SIG_get0_r(rs), signature.data(), 32) == 32 &&
           BN_bn2binpad(ECDSA_SIG_get0_s(rs), signature.data() + 32, 32) == 32;
    ECDSA_SIG_free(rs);
    EVP_PKEY_CTX_free(context);
    EVP_PKEY_free(keyPair);
    return made;
}

}  // namespace veltor::test
