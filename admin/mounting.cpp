#include "admin/mounting.h"

#include "admin/disk_part_results.h"
#include "admin/disk_part_script.h"
#include "base/format.h"
#include "discovery/auto_mount.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/job_thread.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace torvane {

namespace {

constexpr const char* kResultsFileName = "DISKPART MountResults.txt";

DiskPartScript statusQuery() {
    return {"MountStatusScript.txt", "automount\n", kResultsFileName};
}

DiskPartScript mountingDisable() {
    return {"DisableMountScript.txt", "automount disable\nautomount scrub\n", kResultsFileName};
}

DiskPartScript mountingEnable() {
    // Misspelt, and kept: users know the script that stays in their folder by this name.
    return {"EnbleMountScript.txt", "automount enable\nautomount scrub\n", kResultsFileName};
}

/// What diskpart has told, or, where it speaks another language, what the system does.
MountStatus toldOrAsked(MountStatus told) {
    if (told != kMountingUndetermined) {
        return told;
    }
    const std::optional<bool> mounts = readAutoMount();
    return !mounts ? kMountingUndetermined : *mounts ? kMountingEnabled : kMountingDisabled;
}

/// How far a change of mounting came.
enum class ChangeEnd {
    kDone,
    kNoScript,  ///< nothing was run
    kNotRun,    ///< nor was anything here: diskpart could not be started
    kNoResults, ///< diskpart was run
};

/// Runs the script and takes the status from its results. After a failure the status is as it was: a disable request
/// then stays "in progress".
ChangeEnd runChange(AppState& state, const DiskPartScript& script) {
    if (!runDiskPart(script)) {
        LogEvent("ERROR", "Could not BuildDataFile for [%s]", kResultsFileName);
        return ChangeEnd::kNotRun;
    }
    const LoadedText results = loadResults(script);
    if (!results) {
        LogEvent("ERROR", "Could not Load File [%s] into buffer", kResultsFileName);
        return ChangeEnd::kNoResults;
    }
    state.mountStatus = toldOrAsked(mountStatusAfterScrub(results.get()));
    state.view->redrawDriveList();
    return ChangeEnd::kDone;
}

ChangeEnd changeMounting(AppState& state, JobClaim& claim, const DiskPartScript& script) {
    const HeldScript held = writeHeld(script);
    if (!held) {
        logUnwrittenQuery(script);
        return ChangeEnd::kNoScript;
    }
    // Refused while a scan or another job on a drive is at work: then the change shows no flag of its own.
    static_cast<void>(claim.raise());
    const ChangeEnd end = runChange(state, script);
    if (end == ChangeEnd::kDone) {
        claim.lower();
    } else {
        // Kept: after a failed change the program goes on saying that a job runs, until somebody terminates it.
        claim.leaveRaised();
    }
    return end;
}

std::string failureText(const DiskPartScript& script, ChangeEnd end) {
    switch (end) {
    case ChangeEnd::kNoScript:
        return formatText("Drive Mounting was not changed: the file [%s] could not be written.", script.fileName);
    case ChangeEnd::kNotRun:
        return "Drive Mounting was not changed: diskpart could not be run.";
    default:
        return formatText("Whether Drive Mounting was changed is not known: the file [%s] could not be read.",
                          kResultsFileName);
    }
}

void tellFailure(const DiskPartScript& script, ChangeEnd end, bool flagUp) {
    std::string text = failureText(script, end);
    if (flagUp) {
        text += " Press \"Terminate Current Task\" before the next job.";
    }
    prompts::stop("***** DRIVE MOUNTING FAILED *****", text.c_str());
}

/// Several changes may be at work at once.
template <typename Change>
bool startChange(AppState& state, Change change) {
    std::optional<JobClaim> claim = state.jobs.begin(JobKind::kMounting);
    return claim && startJobThread(std::move(*claim), "change of Drive Mounting", std::move(change));
}

/// One whose failure is told at once. `timer` has nothing to report then, or 0: it reports all the same.
bool startToldChange(AppState& state, DiskPartScript (*script)(), int timer) {
    return startChange(state, [&state, script, timer](JobClaim& claim) -> DWORD {
        const ChangeEnd end = changeMounting(state, claim, script());
        if (end == ChangeEnd::kDone) {
            return 1;
        }
        if (timer != 0) {
            state.view->stopTimer(timer);
        }
        tellFailure(script(), end, claim.isRaised());
        return 0;
    });
}

void showDisableOutcome(std::int32_t mountStatus) {
    if (mountStatus == kMountingDisabled) {
        prompts::inform("****** DISABLED ******", "Drive Mounting has been DISABLED");
    } else {
        prompts::inform("****** NOT DISABLED ******", "Drive Mounting has NOT been DISABLED");
    }
}

void showEnableOutcome(std::int32_t mountStatus) {
    std::fputs("Setting ENABLE Complete\n", stdout); // a diagnostic line, seen when started from a console
    if (mountStatus == kMountingEnabled) {
        prompts::inform("****** ENABLED ******", "Drive Mounting has been ENABLED");
    } else {
        // The odd blanks are kept: scripts that answer the box know its text.
        prompts::inform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    }
}

/// None after a failure.
std::optional<MountStatus> queryStatus() {
    const LoadedText results = queryDiskPart(statusQuery());
    return results ? std::optional(toldOrAsked(mountStatusInReport(results.get()))) : std::nullopt;
}

/// What DP_GetMountStatus gives, 0 after a failure; none when the user has not waited for it.
std::optional<std::int32_t> awaitMountStatus(AppState& state) {
    const std::optional<std::optional<MountStatus>> status = waiting::resultOf("diskpart", queryStatus);
    if (!status) {
        return std::nullopt;
    }
    if (!*status) {
        return 0;
    }
    state.mountStatus = **status;
    state.view->redrawDriveList();
    return **status;
}

} // namespace

std::int32_t DP_GetMountStatus(AppState& state) {
    return awaitMountStatus(state).value_or(0);
}

DWORD DP_DisableMountingWorker(AppState& state, JobClaim& claim) {
    return changeMounting(state, claim, mountingDisable()) == ChangeEnd::kDone ? 1 : 0;
}

DWORD DP_EnableMountingWorker(AppState& state, JobClaim& claim) {
    return changeMounting(state, claim, mountingEnable()) == ChangeEnd::kDone ? 1 : 0;
}

bool startEnableMounting(AppState& state) {
    return startChange(state, [&state](JobClaim& claim) { return DP_EnableMountingWorker(state, claim); });
}

void onDisableMounting(AppState& state) {
    const std::optional<std::int32_t> status = awaitMountStatus(state);
    if (!status) {
        return;
    }
    if (*status == kMountingDisabled &&
        !prompts::ask("***** MOUNTING DISABLED -- REBOOT *****",
                      "Mounting Status is already DISABLED. If not working TRY REBOOTING for mounting status change to "
                      "register. Continue DISABLE anyway?")) {
        return;
    }
    const std::int32_t known = state.mountStatus.exchange(kMountingChanging);
    // Before the worker, which stops it when it fails.
    state.view->startTimer(kDisableMountTimer, kMountTimerMilliseconds);
    if (!startToldChange(state, mountingDisable, kDisableMountTimer)) {
        state.mountStatus = known;
        state.view->stopTimer(kDisableMountTimer);
    }
}

void onEnableMounting(AppState& state) {
    const std::optional<std::int32_t> status = awaitMountStatus(state);
    if (!status) {
        return;
    }
    if (*status == kMountingEnabled &&
        !prompts::ask("***** MOUNTING ENABLED -- REBOOT *****",
                      "Mounting Status is already ENABLED. If not working TRY REBOOTING for mounting status change to "
                      "register. Continue ENABLE anyway?")) {
        return;
    }
    if (*status == 0 && !state.jobs.atWork().contains(JobKind::kMounting)) {
        // What is stored is an earlier change's outcome, and not to be told as this one's.
        state.mountStatus = kMountingUndetermined;
    }
    // Unlike the disable command, the status is not set to "changing": the first tick reports whatever the check left.
    if (startToldChange(state, mountingEnable, 0)) {
        state.view->startTimer(kEnableMountTimer, kMountTimerMilliseconds);
    }
}

void onMountTimer(AppState& state, int timerId) {
    const std::int32_t status = state.mountStatus;
    if (status == kMountingChanging || (timerId != kEnableMountTimer && timerId != kDisableMountTimer)) {
        return;
    }
    // The timer first, lest a second box opens on top of this one.
    state.view->stopTimer(timerId);
    if (timerId == kDisableMountTimer) {
        showDisableOutcome(status);
    } else {
        showEnableOutcome(status);
    }
}

} // namespace torvane
