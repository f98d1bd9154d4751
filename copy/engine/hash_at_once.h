#pragma once

#include "copy/engine/block_hasher.h"

#include <cstddef>
#include <span>

namespace torvane {

/// How adding bytes to two digests went. One that there is no hasher for counts as done.
struct AddedAtOnce {
    bool first = true;
    bool second = true;
};

/// Adds the bytes to both, and returns when both have them: the second hasher works beside the first on a thread of its
/// own, or behind it where the system has no room for one. Null: there is nothing to add to.
[[nodiscard]] AddedAtOnce addAtOnce(BlockHasher* first, BlockHasher* second, std::span<const std::byte> bytes);

} // namespace torvane
