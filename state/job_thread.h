#pragma once

#include "base/worker_thread.h"
#include "jobs/jobs.h"
#include "state/event_log.h"

#include <utility>

namespace torvane {

/// Runs `job(claim)` on a thread of its own; what it returns is the thread's exit code. The claim ends with the thread.
/// False, with the claim given back and one "ERROR" log row that names the job, when the system has no room for a
/// thread.
template <typename Job>
bool startJobThread(JobClaim claim, const char* name, Job job) {
    auto run = [claim = std::move(claim), job = std::move(job)]() mutable -> DWORD { return job(claim); };
    if (startThread(std::move(run))) {
        return true;
    }
    LogEvent("ERROR", "Could not start the %s", name);
    return false;
}

} // namespace torvane
