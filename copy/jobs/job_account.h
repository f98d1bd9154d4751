#pragma once

#include "copy/engine/block_hasher.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/drive_status.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// What a job has done, for the row that it leaves in the log file at its end.
struct JobAccount {
    std::string_view ending = kNotStarted;
    JobLosses losses;
    std::string file; ///< the image that it made; empty for a job that made none
    std::optional<Md5Digest> digest;
    std::optional<Sha256Digest> sha256;
};

/// Runs a job between the two rows of its own in the log file, of its beginning and its end. Nothing of an earlier job
/// is left in the dialog's field of losses, and at its end the user is called. Returns what `run` returns.
std::uint32_t runAccounted(const CopyJob& job, const std::function<std::uint32_t(JobAccount&)>& run);

/// Shows in words what the job has lost.
void showLosses(const CopyJob& job, const JobLosses& losses);

} // namespace torvane
