#include "admin/disk_commands.h"

#include "admin/disk_part.h"
#include "base/format.h"
#include "discovery/drive_volumes.h"
#include "state/app_state.h"
#include "state/drive_job.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <functional>
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

DWORD reportOutcome(AppState& state, const DriveRecord& drive, const ChangeTexts& texts, bool done) {
    const std::string sentence = diskSentence(drive, done ? texts.done : texts.failed);
    LogEvent(done ? "SUCCESS" : "FAILURE", "%s", sentence.c_str());
    state.view->setDriveStatus(drive, done ? texts.doneStatus : texts.failedStatus);
    state.jobActive = 0;
    if (done) {
        prompts::inform(texts.doneCaption, sentence.c_str());
    } else {
        prompts::stop(texts.failedCaption, sentence.c_str());
    }
    return done ? 1 : 0;
}

// The busy word is raised before the thread runs, so that a second command finds it however late the thread starts.
void startChange(AppState& state, std::function<DWORD()> change) {
    state.jobActive = 1;
    if (!startDriveJob(state, "change of the disk", std::move(change))) {
        state.jobActive = 0;
    }
}

} // namespace

bool mayChangeDisk(const AppState& state, const DriveRecord& drive) {
    constexpr const char* kWorking = "***** Working *****";
    if (state.scan.driveLoaderWorking == 1) {
        prompts::stop(kWorking, "Drive Loader is Working");
        return false;
    }
    if (state.shortTestsAtWork != 0) {
        prompts::stop(kWorking, "Short Test is Running");
        return false;
    }
    // A copy or a read test that was told to stop uses its drives until its last read is done.
    if (state.jobActive == 1 || state.driveJobAtWork == 1 || state.readTests.workersAtWork != 0) {
        prompts::stop(kWorking, "A Job is Working");
        return false;
    }
    if (drive.recordKind == kRecordKindImageFile) {
        prompts::stop("***** IMAGE FILE *****", "An image file is no disk of this computer");
        return false;
    }
    return true;
}

bool mayCleanDisk(const AppState& state, const DriveRecord& drive) {
    if (!mayChangeDisk(state, drive)) {
        return false;
    }
    if (isSystemDrive(drive, state.scan.volumes)) {
        prompts::stop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
        return false;
    }
    return true;
}

void startSetReadOnly(AppState& state, DriveRecord& drive) {
    startChange(state, [&] { return setReadOnly(state, drive); });
}

void startClearReadOnly(AppState& state, DriveRecord& drive) {
    startChange(state, [&] { return clearReadOnly(state, drive); });
}

void startCleanDisk(AppState& state, DriveRecord& drive) {
    startChange(state, [&] { return cleanDisk(state, drive); });
}

DWORD setReadOnly(AppState& state, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kSetTexts.activity);
    return reportOutcome(state, drive, kSetTexts, changeReadOnly(state, drive, true));
}

DWORD clearReadOnly(AppState& state, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kClearTexts.activity);
    return reportOutcome(state, drive, kClearTexts, changeReadOnly(state, drive, false));
}

DWORD cleanDisk(AppState& state, DriveRecord& drive) {
    state.view->setDriveStatus(drive, kCleanTexts.activity);
    return reportOutcome(state, drive, kCleanTexts, DP_CleanDisk(state, drive) == 1);
}

} // namespace torvane
