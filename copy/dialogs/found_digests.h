#pragma once

#include "copy/engine/block_hasher.h"

#include <optional>
#include <string>

namespace torvane {

/// The digests in the hash files beside the image (copy/jobs/hash_files.h); none of a kind whose file is not there or
/// tells none. The files are looked for on another thread; none at all when the user has not waited for it.
[[nodiscard]] std::optional<Digests> awaitDigestsBeside(const std::string& imagePath);

} // namespace torvane
