#pragma once

#include "copy/jobs/copy_job.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace torvane {

/// What keeps a pass over the blocks from its digest.
enum class HashTrouble : std::uint8_t {
    kNoProvider,
    kNoHash,
    kNoData,   ///< a block could not be added
    kNoDigest, ///< everything was, and the digest is refused
};

void showHashError(const CopyJob& job, DigestKind kind, HashTrouble trouble);

/// Which digests a pass makes.
struct WantedDigests {
    bool md5 = false;
    bool sha256 = false;
};

/// The kinds that are known.
[[nodiscard]] constexpr WantedDigests kindsOf(const Digests& known) {
    return {.md5 = known.md5.has_value(), .sha256 = known.sha256.has_value()};
}

/// The hashers of one pass; null for a digest that is not wanted.
struct Hashers {
    std::unique_ptr<BlockHasher> md5;
    std::unique_ptr<BlockHasher> sha256;
};

/// Hashers that have been given nothing yet. None, and the user was told, when the system lacks one; `beforeBox` is
/// called first, because the box may wait for its answer until the morning.
[[nodiscard]] std::optional<Hashers> makeHashersOrTell(
    const CopyJob& job, WantedDigests wanted, const std::function<void()>& beforeBox = [] {});

/// What the hashers have made of everything that they were given; none of a kind that the system refuses.
[[nodiscard]] Digests digestsOf(const Hashers& hashers);

} // namespace torvane
