#include "copy/engine/md5_hasher.h"

#include "base/owned_handle.h"

#include <windows.h>

#include <wincrypt.h>

namespace torvane {

namespace {

struct CryptProviderTraits {
    using Value = HCRYPTPROV;
    static Value empty() { return 0; }
    static void close(Value provider) { CryptReleaseContext(provider, 0); }
};
using UniqueCryptProvider = Owned<CryptProviderTraits>;

struct CryptHashTraits {
    using Value = HCRYPTHASH;
    static Value empty() { return 0; }
    static void close(Value hash) { CryptDestroyHash(hash); }
};
using UniqueCryptHash = Owned<CryptHashTraits>;

UniqueCryptProvider acquireProvider() {
    HCRYPTPROV provider = 0;
    const bool acquired = CryptAcquireContextA(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) != 0;
    return UniqueCryptProvider(acquired ? provider : 0);
}

UniqueCryptHash createMd5(HCRYPTPROV provider) {
    HCRYPTHASH hash = 0;
    const bool created = CryptCreateHash(provider, CALG_MD5, 0, 0, &hash) != 0;
    return UniqueCryptHash(created ? hash : 0);
}

class Md5Hasher : public BlockHasher {
  public:
    Md5Hasher(UniqueCryptProvider provider, UniqueCryptHash hash)
        : provider_(std::move(provider)), hash_(std::move(hash)) {}

    bool add(std::span<const std::byte> bytes) override {
        return CryptHashData(hash_.get(), reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()),
                             0) != 0;
    }

    bool finish(std::span<std::uint8_t> digest) override {
        auto size = static_cast<DWORD>(digest.size());
        return CryptGetHashParam(hash_.get(), HP_HASHVAL, digest.data(), &size, 0) != 0 && size == digest.size();
    }

  private:
    UniqueCryptProvider provider_;
    UniqueCryptHash hash_; // after the provider: it is destroyed first
};

} // namespace

std::unique_ptr<BlockHasher> makeMd5Hasher(HasherFailure& failure) {
    UniqueCryptProvider provider = acquireProvider();
    if (!provider) {
        failure = HasherFailure::kNoProvider;
        return nullptr;
    }
    UniqueCryptHash hash = createMd5(provider.get());
    if (!hash) {
        failure = HasherFailure::kNoHash;
        return nullptr;
    }
    return std::make_unique<Md5Hasher>(std::move(provider), std::move(hash));
}

} // namespace torvane
