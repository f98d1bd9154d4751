#pragma once

#include "copy/engine/block_hasher.h"

#include <optional>
#include <string_view>

namespace torvane {

/// The digests that a user has typed or pasted to compare with; one of the two may be empty. None, and a box has said
/// what is wrong, when there is none or one cannot be read.
[[nodiscard]] std::optional<Digests> requireDigests(std::string_view md5, std::string_view sha256);

} // namespace torvane
