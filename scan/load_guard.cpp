#include "scan/load_guard.h"

#include "jobs/jobs.h"
#include "state/still_at_work.h"
#include "ui/prompts.h"

namespace torvane {

bool mayLoadDrives(const Jobs& jobs) {
    const Jobs::Obstacle obstacle = jobs.whyNot(JobKind::kScan);
    if (obstacle.flag) {
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
    // A copy or a read test that was told to stop uses its drives' records until its last read is done.
    if (obstacle) {
        sayWhoIsAtWork(obstacle);
    }
    return !obstacle;
}

} // namespace torvane
