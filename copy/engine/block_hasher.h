#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

enum class DigestKind : std::uint8_t { kMd5, kSha256 };

using Md5Digest = std::array<std::uint8_t, 16>;    ///< RFC 1321
using Sha256Digest = std::array<std::uint8_t, 32>; ///< FIPS 180-4

/// The digests of one content; none of a kind that was not made, or is not known.
struct Digests {
    std::optional<Md5Digest> md5;
    std::optional<Sha256Digest> sha256;

    bool operator==(const Digests&) const = default;
};

/// Why there is no hasher.
enum class HasherFailure { kNone, kNoProvider, kNoHash };

/// A digest in the making. One thread at a time may use it.
class BlockHasher {
  public:
    virtual ~BlockHasher() = default;

    /// False when the bytes could not be added.
    [[nodiscard]] virtual bool add(std::span<const std::byte> bytes) = 0;

    /// The digest of everything added, into a span of exactly its size. False when the system refuses it. Nothing can
    /// be added any more.
    [[nodiscard]] virtual bool finish(std::span<std::uint8_t> digest) = 0;
};

/// The digest of everything that a hasher of its kind was given; none when the system refuses it.
template <typename Digest>
[[nodiscard]] std::optional<Digest> digestOf(BlockHasher& hasher) {
    Digest digest{};
    return hasher.finish(digest) ? std::optional(digest) : std::nullopt;
}

} // namespace torvane
