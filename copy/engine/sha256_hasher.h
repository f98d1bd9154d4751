#pragma once

#include "copy/engine/block_hasher.h"

#include <memory>

namespace torvane {

/// A SHA-256 digest by CNG. Null, with the reason in `failure`, when the system has no provider or no hash.
[[nodiscard]] std::unique_ptr<BlockHasher> makeSha256Hasher(HasherFailure& failure);

} // namespace torvane
