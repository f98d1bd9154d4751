#pragma once

#include "copy/jobs/copy_job.h"

#include <memory>

namespace torvane {

inline constexpr const char* kNoHashData = "Could not get HASH data. Exiting";
inline constexpr const char* kNoHashParam = "Could not get HASH PARAM. Exiting";

void showHashError(const CopyJob& job, const char* text);

/// A hasher that has been given nothing yet. Null, and the user was told, when the system has none.
[[nodiscard]] std::unique_ptr<BlockHasher> makeHasherOrTell(const CopyJob& job);

} // namespace torvane
