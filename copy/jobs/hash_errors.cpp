#include "copy/jobs/hash_errors.h"

#include <array>
#include <cstddef>
#include <utility>

namespace torvane {

namespace {

// In the order of HashTrouble.
constexpr std::array kMd5Texts{
    "Could not get HANDLE to CRYPTO provider. Exiting",
    "Could not get MD5 HASH for Crypto Provider. Exiting",
    "Could not get HASH data. Exiting",
    "Could not get HASH PARAM. Exiting",
};
constexpr std::array kSha256Texts{
    "Could not open the system's provider of SHA-256. Nothing was read. Start again without SHA-256",
    "Could not begin a SHA-256 HASH. Nothing was read. Start again without SHA-256",
    "Could not add a block to the SHA-256 HASH. Nothing more is read. Start again",
    "Could not get the SHA-256 HASH at its end. Nothing was compared. Start again",
};

void tellWhyNone(const CopyJob& job, DigestKind kind, HasherFailure failure) {
    showHashError(job, kind, failure == HasherFailure::kNoProvider ? HashTrouble::kNoProvider : HashTrouble::kNoHash);
}

} // namespace

void showHashError(const CopyJob& job, DigestKind kind, HashTrouble trouble) {
    const auto& texts = kind == DigestKind::kMd5 ? kMd5Texts : kSha256Texts;
    job.system.stop("****** HASH ERROR ******", texts[static_cast<std::size_t>(trouble)]);
}

std::optional<Hashers> makeHashersOrTell(const CopyJob& job, WantedDigests wanted,
                                         const std::function<void()>& beforeBox) {
    Hashers hashers;
    const auto makeOrTell = [&](DigestKind kind, std::unique_ptr<BlockHasher>& hasher) {
        HasherFailure failure = HasherFailure::kNone;
        hasher = job.system.makeHasher(kind, failure);
        if (failure == HasherFailure::kNone) {
            return true;
        }
        beforeBox();
        tellWhyNone(job, kind, failure);
        return false;
    };
    const bool made = (!wanted.md5 || makeOrTell(DigestKind::kMd5, hashers.md5)) &&
                      (!wanted.sha256 || makeOrTell(DigestKind::kSha256, hashers.sha256));
    return made ? std::optional(std::move(hashers)) : std::nullopt;
}

Digests digestsOf(const Hashers& hashers) {
    Digests digests;
    if (hashers.md5) {
        digests.md5 = digestOf<Md5Digest>(*hashers.md5);
    }
    if (hashers.sha256) {
        digests.sha256 = digestOf<Sha256Digest>(*hashers.sha256);
    }
    return digests;
}

} // namespace torvane
