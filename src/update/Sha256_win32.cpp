#include <windows.h>
#include <bcrypt.h>

#include "update/Sha256.h"

namespace veltor {
namespace {

bool Succeeded(NTSTATUS status) { return status >= 0; }

}  // namespace

bool Sha256(const uint8_t* data, size_t size, Sha256Digest& digest) {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (!Succeeded(BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0))) return false;
    BCRYPT_HASH_HANDLE hash = nullptr;
    bool ok = Succeeded(BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0));
    // BCryptHashData takes at most 4 GiB a call.
    for (size_t done = 0; ok && done < size;) {
        const ULONG chunk = static_cast<ULONG>(size - done > 0x40000000u ? 0x40000000u : size - done);
        ok = Succeeded(BCryptHashData(hash, const_cast<PUCHAR>(data + done), chunk, 0));
        done += chunk;
    }
    ok = ok && Succeeded(BCryptFinishHash(hash, digest.data(), static_cast<ULONG>(digest.size()), 0));
    if (hash != nullptr) BCryptDestroyHash(hash);
    BCryptCloseAlgorithmProvider(algorithm, 0);
    return ok;
}

}  // namespace veltor
