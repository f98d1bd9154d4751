#pragma once

#include "jobs/jobs.h"

#include <string>

namespace torvane {

/// "a clone, a Short Read Test"; "a job" for none of them, when only a flag is up.
[[nodiscard]] std::string namesOfJobs(JobKinds kinds);

/// Who keeps a command from beginning, as its box tells it.
[[nodiscard]] std::string stillAtWorkText(const Jobs::Obstacle& obstacle);

/// The box of a command that does not begin because somebody is still at work.
void sayWhoIsAtWork(const Jobs::Obstacle& obstacle);

} // namespace torvane
