#include "scan/stop_grace.h"

#include "jobs/jobs.h"

namespace torvane {

bool StopGrace::lasts(std::chrono::milliseconds runsSince) {
    constexpr std::chrono::seconds kGrace{5};
    if (!claim_.stopAsked()) {
        return true;
    }
    if (!stopSeen_) {
        stopSeen_ = runsSince;
    }
    return runsSince - *stopSeen_ < kGrace;
}

} // namespace torvane
