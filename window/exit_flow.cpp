#include "window/exit_flow.h"

#include "admin/mounting.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/mount_status.h"
#include "state/still_at_work.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

bool confirmLeaving(AppState& state) {
    constexpr const char* kCaption = "***** Exiting Application *****";
    if (!state.jobs.active()) {
        return prompts::ask(kCaption, "You are about to EXIT TVN. Are you sure?");
    }
    if (!prompts::ask(kCaption, "Application still has a job working. Do you still want to EXIT?")) {
        return false;
    }
    LogToFile(kJobCategory, "Torvane is left while at work: %s", namesOfJobs(state.jobs.atWork()).c_str());
    state.jobs.askToStop();
    return true;
}

// The thread that enables mounting writes the same results file, so this check may fail on it: then what the state
// holds is the last known answer, or already that thread's.
bool mountingIsStillDisabled(AppState& state) {
    const std::int32_t status = DP_GetMountStatus(state);
    return (status == 0 ? state.mountStatus.load() : status) == kMountingDisabled;
}

void offerEnabledMounting(AppState& state) {
    if (DP_GetMountStatus(state) != kMountingDisabled) {
        return;
    }
    if (!prompts::ask("***** MOUNTING DISABLED -- *****",
                      "Drive Mounting DISABLED. It is recommended that you ENABLE it before EXITing. Do you wish to "
                      "ENABLE Drive Mounting")) {
        return;
    }
    startEnableMounting(state);
    // Asked at once: the window's thread never waits for a worker, so a change still under way counts as none.
    if (mountingIsStillDisabled(state)) {
        prompts::stop("***** DRIVE MOUNTING STILL DISABLED *****",
                      "Drive Mounting STILL DISABLED. Reboot Computer to clear Drive Mounting Flags");
    }
}

} // namespace

bool confirmExit(AppState& state) {
    if (!confirmLeaving(state)) {
        return false;
    }
    offerEnabledMounting(state);
    return true;
}

} // namespace torvane
