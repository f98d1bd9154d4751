#pragma once

#include "copy/jobs/copy_job.h"
#include "copy/jobs/job_account.h"
#include "copy/jobs/rescue_samples.h"
#include "copy/rescue/rescue_system.h"

#include <memory>
#include <optional>
#include <string>

namespace torvane {

// What has to be sure before a rescue's first read.

/// Where the rescue goes, and what its map tells of it.
struct RescuePlan {
    std::unique_ptr<RescueTarget> target; ///< null: the rescue does not begin, and the user knows why
    RescueOrigin origin{.fromRescue = true, .place = std::nullopt}; ///< of a new map, in which nothing has failed
    CopyReader readCopy;
    Samples samples; ///< how copy and drive agreed when the rescue was begun
};

/// Opens the image or prepares the destination, takes up its map or makes one, and sees to it that drive, copy, map and
/// record belong together. The account has the map then, and its files are there. `drive` is the source.
[[nodiscard]] RescuePlan planRescue(const CopyJob& job, JobAccount& account, RescueDrive& drive);

/// Tells the user why a rescue does not begin: whole sentences, the last without its full stop.
void tellRescueNotBegun(const CopyJob& job, const std::string& text);

} // namespace torvane
