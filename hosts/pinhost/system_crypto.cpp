#include "pinhost/system_crypto.h"

#include <windows.h>

#include <bcrypt.h>

#include "pinhost/command.h"
#include "platform/handle.h"

namespace pinhost {
namespace {

struct AlgorithmTraits {
    using Handle = BCRYPT_ALG_HANDLE;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct HashTraits {
    using Handle = BCRYPT_HASH_HANDLE;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { BCryptDestroyHash(handle); }
};

void Check(NTSTATUS status, const char* pszWhat) {
    if (!BCRYPT_SUCCESS(status)) {
        throw EnvironmentError(std::string("the system's ") + pszWhat + " failed, status " +
                               std::to_string(status));
    }
}

// The interface takes pointers to what it does not change.
PUCHAR Bytes(std::span<const char> text) {
    return reinterpret_cast<PUCHAR>(const_cast<char*>(text.data()));
}

}  // namespace

std::array<unsigned char, 32> HmacSha256(std::span<const char> key, std::span<const char> message) {
    mvp::UniqueHandle<AlgorithmTraits> algorithm;
    Check(BCryptOpenAlgorithmProvider(algorithm.put(), BCRYPT_SHA256_ALGORITHM, nullptr,
                                      BCRYPT_ALG_HANDLE_HMAC_FLAG),
          "keyed hash");
    mvp::UniqueHandle<HashTraits> hash;
    Check(BCryptCreateHash(algorithm.get(), hash.put(), nullptr, 0, Bytes(key),
                           static_cast<ULONG>(key.size()), 0),
          "keyed hash");
    Check(BCryptHashData(hash.get(), Bytes(message), static_cast<ULONG>(message.size()), 0),
          "keyed hash");
    std::array<unsigned char, 32> result = {};
    Check(BCryptFinishHash(hash.get(), result.data(), static_cast<ULONG>(result.size()), 0),
          "keyed hash");
    return result;
}

std::array<unsigned char, kChallengeBytes> RandomChallenge() {
    std::array<unsigned char, kChallengeBytes> bytes = {};
    Check(BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(bytes.size()),
                          BCRYPT_USE_SYSTEM_PREFERRED_RNG),
          "random source");
    return bytes;
}

}  // namespace pinhost
