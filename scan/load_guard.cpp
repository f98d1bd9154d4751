#include "scan/load_guard.h"

#include "jobs/job_rules.h"
#include "jobs/jobs.h"
#include "ui/prompts.h"

namespace torvane {

bool mayLoadDrives(const Jobs& jobs) {
    const Jobs::Obstacle obstacle = jobs.whyNot(JobKind::kScan);
    // A copy that was told to stop uses its drives' records until its last read is done.
    if (obstacle.flag || !(obstacle.kinds & kDriveJobs).empty()) {
        return false;
    }
    if (obstacle.kinds.contains(JobKind::kScan)) {
        prompts::stop("***** Working *****", "Drive Loader is Working");
        return false;
    }
    if (obstacle.kinds.contains(JobKind::kShortTest)) {
        prompts::stop("***** Load Drives *****", "Short Test is Running");
        return false;
    }
    // Likewise a read test that was told to stop.
    return obstacle.kinds.empty();
}

} // namespace torvane
