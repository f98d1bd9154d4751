#include "state/drive_job.h"

#include "base/worker_thread.h"
#include "jobs/job_rules.h"
#include "state/app_state.h"
#include "state/event_log.h"

#include <memory>

namespace torvane {

namespace {

/// What a job's thread is given.
struct JobStart {
    AppState& state;
    std::function<DWORD()> job;
};

DWORD WINAPI driveJobThread(void* argument) {
    const std::unique_ptr<JobStart> start(static_cast<JobStart*>(argument));
    const DWORD exitCode = start->job();
    start->state.driveJobAtWork = 0;
    return exitCode;
}

} // namespace

bool startDriveJob(AppState& state, const char* name, std::function<DWORD()> job) {
    if (state.driveJobAtWork.exchange(1) == 1) {
        return false;
    }
    std::unique_ptr<JobStart> start(new JobStart{state, std::move(job)});
    state.worker = std::shared_ptr<void>(startThread(driveJobThread, start.get()).release(), [](HANDLE thread) {
        if (thread != nullptr) {
            CloseHandle(thread);
        }
    });
    if (!state.worker) {
        state.driveJobAtWork = 0;
        LogEvent("ERROR", "Could not start the %s", name);
        return false;
    }
    static_cast<void>(start.release()); // the thread's now
    return true;
}

bool lastDriveJobIsStillEnding(const AppState& state) {
    if (state.driveJobAtWork == 0 && (state.jobs.atWork() & kDriveJobs).empty()) {
        return false;
    }
    LogEvent("STATUS", "The last job on a drive has not ended yet");
    return true;
}

} // namespace torvane
