#include "copy/engine/sha256_hasher.h"

#include "base/owned_handle.h"

#include <windows.h>

#include <bcrypt.h>

#include <utility>

namespace torvane {

namespace {

struct AlgorithmTraits {
    using Value = BCRYPT_ALG_HANDLE;
    static Value empty() { return nullptr; }
    static void close(Value algorithm) { BCryptCloseAlgorithmProvider(algorithm, 0); }
};
using UniqueAlgorithm = Owned<AlgorithmTraits>;

struct HashTraits {
    using Value = BCRYPT_HASH_HANDLE;
    static Value empty() { return nullptr; }
    static void close(Value hash) { BCryptDestroyHash(hash); }
};
using UniqueHash = Owned<HashTraits>;

UniqueAlgorithm openSha256() {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    const bool opened = BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    return UniqueAlgorithm(opened ? algorithm : nullptr);
}

/// Without memory of ours for the hash object, CNG allocates its own.
UniqueHash createHash(BCRYPT_ALG_HANDLE algorithm) {
    BCRYPT_HASH_HANDLE hash = nullptr;
    const bool created = BCRYPT_SUCCESS(BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0));
    return UniqueHash(created ? hash : nullptr);
}

class Sha256Hasher : public BlockHasher {
  public:
    Sha256Hasher(UniqueAlgorithm algorithm, UniqueHash hash)
        : algorithm_(std::move(algorithm)), hash_(std::move(hash)) {}

    bool add(std::span<const std::byte> bytes) override {
        // The call takes its input as bytes that it might change, and does not.
        auto* const input = reinterpret_cast<PUCHAR>(const_cast<std::byte*>(bytes.data()));
        return BCRYPT_SUCCESS(BCryptHashData(hash_.get(), input, static_cast<ULONG>(bytes.size()), 0));
    }

    bool finish(std::span<std::uint8_t> digest) override {
        return BCRYPT_SUCCESS(BCryptFinishHash(hash_.get(), digest.data(), static_cast<ULONG>(digest.size()), 0));
    }

  private:
    UniqueAlgorithm algorithm_;
    UniqueHash hash_; // after the algorithm: it is destroyed first
};

} // namespace

std::unique_ptr<BlockHasher> makeSha256Hasher(HasherFailure& failure) {
    UniqueAlgorithm algorithm = openSha256();
    if (!algorithm) {
        failure = HasherFailure::kNoProvider;
        return nullptr;
    }
    UniqueHash hash = createHash(algorithm.get());
    if (!hash) {
        failure = HasherFailure::kNoHash;
        return nullptr;
    }
    return std::make_unique<Sha256Hasher>(std::move(algorithm), std::move(hash));
}

} // namespace torvane
