#include "admin/disk_commands.h"

#include "admin/changed_drive.h"
#include "admin/disk_part.h"
#include "base/format.h"
#include "records/drive_record.h"
#include "state/app_state.h"
#include "state/drive_use.h"
#include "state/event_log.h"
#include "state/job_thread.h"
#include "state/still_at_work.h"
#include "ui/prompts.h"

#include <optional>
#include <string>
#include <utility>

namespace torvane {

namespace {

/// How a change is told.
struct ChangeTexts {
    const char* activity; ///< the "Status" cell meanwhile

    const char* doneStatus; ///< the "Status" cell afterwards
    const char* doneCaption;
    const char* done; ///< the end of "Disk NNN ..."

    const char* failedStatus;
    const char* failedCaption;
    const char* failed; ///< the end of "Disk NNN ..."
};

constexpr ChangeTexts kSetTexts{.activity = "Setting read-only",
                                .doneStatus = "COMPLETED read-only set",
                                .doneCaption = "****** READ-ONLY SET ******",
                                .done = "is now READ-ONLY",
                                .failedStatus = "BAD read-only not set",
                                .failedCaption = "****** READ-ONLY NOT SET ******",
                                .failed = "has NOT been set READ-ONLY"};

constexpr ChangeTexts kClearTexts{.activity = "Clearing read-only",
                                  .doneStatus = "COMPLETED read-only cleared",
                                  .doneCaption = "****** READ-ONLY CLEARED ******",
                                  .done = "is now WRITABLE",
                                  .failedStatus = "BAD read-only not cleared",
                                  .failedCaption = "****** READ-ONLY NOT CLEARED ******",
                                  .failed = "is STILL READ-ONLY, or its state is not known"};

constexpr ChangeTexts kCleanTexts{.activity = "Cleaning disk",
                                  .doneStatus = "COMPLETED disk cleaned",
                                  .doneCaption = "****** DISK CLEANED ******",
                                  .done = "has been CLEANED",
                                  .failedStatus = "BAD disk not cleaned",
                                  .failedCaption = "****** DISK NOT CLEANED ******",
                                  .failed = "has NOT been CLEANED"};

std::string diskSentence(const DriveRecord& drive, const char* ending) {
    return formatText("Disk %03d - %s %s %s", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str(),
                      ending);
}

void showOutcome(DiskChange end, const ChangeTexts& texts, const std::string& sentence) {
    if (const char* const consequence = changedDriveConsequence(end)) {
        prompts::stop(kDriveHasChanged, changedDriveText("DISK", consequence).c_str());
    } else if (end == DiskChange::kMade) {
        prompts::inform(texts.doneCaption, sentence.c_str());
    } else {
        prompts::stop(texts.failedCaption, sentence.c_str());
    }
}

DWORD reportOutcome(AppState& state, JobClaim& claim, const DriveRecord& drive, const ChangeTexts& texts,
                    DiskChange end) {
    const bool done = end == DiskChange::kMade;
    const std::string sentence = diskSentence(drive, done ? texts.done : texts.failed);
    LogEvent(done ? "SUCCESS" : "FAILURE", "%s", sentence.c_str());
    state.view->setDriveStatus(drive, done ? texts.doneStatus : texts.failedStatus);
    claim.lower();
    showOutcome(end, texts, sentence);
    return done ? 1 : 0;
}

// The claim is taken before the thread runs, so that a second command finds it however late the thread starts.
void startChange(AppState& state, DriveRecord& drive, DWORD (*change)(AppState&, JobClaim&, DriveRecord&)) {
    std::optional<JobClaim> claim = state.jobs.begin(JobKind::kDiskChange);
    if (!claim) {
        sayWhoIsAtWork(state.jobs.whyNot(JobKind::kDiskChange));
        return;
    }
    if (std::optional<DriveUse> use = useDrives({&drive})) {
        startJobThread(
            std::move(*claim), "change of the disk",
            [&state, &drive, change, use = std::move(*use)](JobClaim& own) { return change(state, own, drive); });
    }
}

} // namespace

void startSetReadOnly(AppState& state, DriveRecord& drive) {
    startChange(state, drive, setReadOnly);
}

void startClearReadOnly(AppState& state, DriveRecord& drive) {
    startChange(state, drive, clearReadOnly);
}

void startCleanDisk(AppState& state, DriveRecord& drive) {
    startChange(state, drive, cleanDisk);
}

DWORD setReadOnly(AppState& state, JobClaim& claim, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kSetTexts.activity);
    return reportOutcome(state, claim, drive, kSetTexts, changeReadOnly(*state.view, drive, true));
}

DWORD clearReadOnly(AppState& state, JobClaim& claim, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kClearTexts.activity);
    return reportOutcome(state, claim, drive, kClearTexts, changeReadOnly(*state.view, drive, false));
}

DWORD cleanDisk(AppState& state, JobClaim& claim, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kCleanTexts.activity);
    return reportOutcome(state, claim, drive, kCleanTexts, cleanDrive(drive));
}

} // namespace torvane
