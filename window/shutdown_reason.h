#pragma once

#include "jobs/job_kind.h"

namespace torvane {

/// Why the session must not end while these are at work, for the system to show: one that uses or changes drives would
/// be cut off. Null when none of them does.
[[nodiscard]] const char* shutdownReason(JobKinds atWork);

} // namespace torvane
