#include "state/still_at_work.h"

#include "ui/prompts.h"

#include <array>
#include <cstddef>

namespace torvane {

namespace {

// In the order of the kinds.
constexpr std::array<const char*, kJobKinds> kNames{"the drive scan",
                                                    "a clone",
                                                    "an image of a drive",
                                                    "a forensic image",
                                                    "a copy of an image to a drive",
                                                    "a rescue of a drive",
                                                    "a verification of an image",
                                                    "a change of a disk",
                                                    "a change of Drive Mounting",
                                                    "a Short Read Test",
                                                    "a Critical Read Test",
                                                    "a NIST Read Test"};

} // namespace

std::string namesOfJobs(JobKinds kinds) {
    std::string names;
    for (std::size_t kind = 0; kind < kJobKinds; ++kind) {
        if (kinds.contains(static_cast<JobKind>(kind))) {
            names += (names.empty() ? "" : ", ") + std::string(kNames[kind]);
        }
    }
    return names.empty() ? "a job" : names;
}

std::string stillAtWorkText(const Jobs::Obstacle& obstacle) {
    return "Still at work: " + namesOfJobs(obstacle.kinds) +
           ".\n\nNothing was started. What was told to stop ends with the read, write or tool that it has under way. "
           "Please try again then." +
           (obstacle.kinds.contains(JobKind::kDiskChange)
                ? "\n\nIf the tool that changes the disk never ends, Torvane has to be restarted."
                : "");
}

void sayWhoIsAtWork(const Jobs::Obstacle& obstacle) {
    prompts::stop("***** Working *****", stillAtWorkText(obstacle).c_str());
}

} // namespace torvane
