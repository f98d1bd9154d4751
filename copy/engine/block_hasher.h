#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

using Md5Digest = std::array<std::uint8_t, 16>;

/// Why there is no hasher.
enum class HasherFailure { kNone, kNoProvider, kNoHash };

/// An MD5 digest in the making. One thread at a time may use it.
class BlockHasher {
  public:
    virtual ~BlockHasher() = default;

    /// False when the bytes could not be added.
    [[nodiscard]] virtual bool add(std::span<const std::byte> bytes) = 0;

    /// The digest of everything added; none when the system refuses it. Nothing can be added any more.
    [[nodiscard]] virtual std::optional<Md5Digest> digest() = 0;
};

} // namespace torvane
