#pragma once

#include "copy/engine/block_hasher.h"

#include <memory>

namespace torvane {

/// An MD5 digest by CryptoAPI. Null, with the reason in `failure`, when the system has no provider or no hash.
[[nodiscard]] std::unique_ptr<BlockHasher> makeMd5Hasher(HasherFailure& failure);

} // namespace torvane
