#pragma once

#include "copy/engine/block_hasher.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace torvane {

/// "0a1b...": two lower-case digits for each byte.
[[nodiscard]] std::string hexText(std::span<const std::uint8_t> digest);

/// Reads a digest of exactly that many bytes from text that a user has typed or pasted, or that a file holds: digits in
/// either case, with blanks, tabs, ends of lines and colons anywhere between them.
enum class DigestReading : std::uint8_t {
    kRead,
    kNothing,     ///< not a single digit, and nothing else either
    kOtherLetter, ///< something that is neither a digit nor stands between them
    kOtherLength, ///< too few digits, or too many
};
[[nodiscard]] DigestReading readDigest(std::string_view text, std::span<std::uint8_t> digest);

/// The digest, of the kind's own length; none for whatever is not exactly one.
template <typename Digest>
[[nodiscard]] std::optional<Digest> digestIn(std::string_view text) {
    Digest digest{};
    return readDigest(text, digest) == DigestReading::kRead ? std::optional(digest) : std::nullopt;
}

} // namespace torvane
