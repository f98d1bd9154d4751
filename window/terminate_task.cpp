#include "window/terminate_task.h"

#include "jobs/jobs.h"
#include "ui/prompts.h"

namespace torvane {

void terminateCurrentTask(Jobs& jobs) {
    if (!jobs.active()) {
        return;
    }
    if (prompts::ask("***** STATUS TERMINATE JOB STATUS *****",
                     "You are about to TERMINATE the current job. Is that your intent?")) {
        jobs.askToStop();
    }
}

} // namespace torvane
