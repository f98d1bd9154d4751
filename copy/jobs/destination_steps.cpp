#include "copy/jobs/destination_steps.h"

#include "admin/changed_drive.h"
#include "base/format.h"
#include "copy/jobs/comparison_steps.h"
#include "copy/jobs/copy_steps.h"
#include "records/drive_texts.h"
#include "records/sector_size.h"

#include <cinttypes>
#include <string>
#include <vector>

namespace torvane {

namespace {

bool isDestinationUnchanged(const CopyJob& job, std::string_view untouched) {
    if (job.system.isStillTheDestination(*job.order.destination)) {
        return true;
    }
    job.system.stop(kDriveHasChanged, changedDriveText("DESTINATION", untouched).c_str());
    return false;
}

/// "K:", "C:\mnt\": as the user knows the volume.
std::string inWords(const std::string& root) {
    constexpr std::size_t kLetterRoot = 3; // "K:\"
    if (root.size() < kLetterRoot || root[1] != ':') {
        return "a volume without a letter";
    }
    return root.size() == kLetterRoot ? root.substr(0, 2) : root;
}

/// "K:, C:\mnt\"
std::string inWords(const std::vector<std::string>& roots) {
    std::string text;
    for (const std::string& root : roots) {
        text.append(text.empty() ? "" : ", ").append(inWords(root));
    }
    return text.empty() ? "nothing with a letter" : text;
}

bool wantsItUncleaned(const CopyJob& job) {
    const std::string text = "The DESTINATION could not be cleaned. Still mounted on it: " +
                             inWords(job.system.volumesOn(*job.order.destination)) +
                             ". Windows refuses writes inside mounted volumes, so parts of the copy may not arrive. "
                             "Nothing was written yet. Continue anyway?";
    return job.system.askDefaultNo("***** DESTINATION NOT CLEANED *****", text.c_str());
}

bool areUnchangedSinceClean(const CopyJob& job) {
    return (job.order.source == nullptr ||
            isSourceUnchanged(job, "The DESTINATION was cleaned before, nothing was written to it")) &&
           isDestinationUnchanged(job, "It was cleaned before, nothing else was written");
}

DiskChange cleanOut(const CopyJob& job) {
    job.system.setDriveStatus(*job.order.destination, "Cleaning disk");
    job.display.setStatus(" Status: Cleaning the destination");
    const DiskChange end = job.system.cleanDisk(*job.order.destination);
    job.display.setStatus(" Status: Idle");
    return end;
}

/// False when the destination must not be written to.
bool clean(const CopyJob& job) {
    const DiskChange end = cleanOut(job);
    if (const char* const consequence = changedDriveConsequence(end)) {
        job.system.stop(kDriveHasChanged, changedDriveText("DESTINATION", consequence).c_str());
        return false;
    }
    if (end == DiskChange::kMade) {
        return areUnchangedSinceClean(job);
    }
    // Whoever has asked the job to stop does not want it uncleaned either. The question may stay open for hours.
    return !job.claim.isRaised() ||
           (isDestinationUnchanged(job, "Nothing was written") && wantsItUncleaned(job) && areDrivesUnchanged(job));
}

void tellMount(const CopyJob& job, const JobLosses& losses) {
    const std::vector<std::string> roots = job.system.volumesOn(*job.order.destination);
    // What was mounted may have gone again, or go by another name by now.
    const std::string text = "Windows has mounted " + (roots.empty() ? "a volume" : inWords(roots)) +
                             " on the DESTINATION during the copy, and refuses writes inside mounted volumes. " +
                             formatText("%" PRIu64, losses.failedWrites) +
                             (losses.failedWrites == 1 ? " write" : " writes") +
                             " failed: the copy is not whole. Press 'Disable Drive Mounting', and copy again: the "
                             "DESTINATION is cleaned first";
    job.system.stop("***** MOUNTED DURING THE COPY *****", text.c_str());
}

} // namespace

std::vector<const DriveRecord*> drivesOf(const CopyJob& job) {
    std::vector<const DriveRecord*> drives{job.order.source, job.order.destination};
    std::erase(drives, nullptr);
    return drives;
}

bool isSourceUnchanged(const CopyJob& job, std::string_view untouched) {
    if (job.system.isStillTheSource(*job.order.source)) {
        return true;
    }
    job.system.stop(kDriveHasChanged, changedDriveText("SOURCE", untouched).c_str());
    return false;
}

bool areDrivesUnchanged(const CopyJob& job) {
    return (job.order.source == nullptr || isSourceUnchanged(job)) &&
           isDestinationUnchanged(job, "Nothing was written");
}

Readiness prepareDestination(const CopyJob& job, const BlockOrder& order) {
    if (job.claim.isRaised() && order.count() != 0 && !(areDrivesUnchanged(job) && clean(job))) {
        return Readiness::kRefused;
    }
    return job.claim.isRaised() ? Readiness::kReady : Readiness::kStopped;
}

bool isDestinationUnmounted(const CopyJob& job) {
    return job.system.volumesOn(*job.order.destination).empty();
}

bool wasMountedMeanwhile(const CopyJob& job, const DriveSink& sink) {
    return sink.wasShutOut() && !isDestinationUnmounted(job);
}

void adoptNewTable(const CopyJob& job, const DriveSink& sink) {
    if (sink.mayHoldNewTable()) {
        showNewTableToSystem(job);
    }
    job.system.rememberPartitionTable(*job.order.destination);
}

void showNewTableToSystem(const CopyJob& job) {
    const DriveRecord& destination = *job.order.destination;
    if (const std::optional<std::string> failure = job.system.readTableAnew(destination)) {
        job.system.logError("Windows could not read the new partition table of " + jobDriveText(destination) + ": " +
                            *failure + ". Plug the drive in anew");
    }
}

std::uint32_t runOntoDrive(const CopyJob& job, const std::function<std::uint32_t(JobAccount&)>& run) {
    JobAccount account;
    // The row of its end is written before anybody has to answer.
    const std::uint32_t exitCode = runAccounted(job, account, [&] { return run(account); });
    if (account.losses.mountedMeanwhile) {
        tellMount(job, account.losses);
    }
    if (account.comparison) {
        showComparison(job, *account.comparison);
    }
    return exitCode;
}

bool isPaddingWanted(const CopyJob& job, const CopyRange& range, std::string_view what) {
    if (range.oddBytes == 0) {
        return true;
    }
    const std::string text =
        std::string("The ").append(what) +
        formatText(" is %" PRIu64 " bytes longer than whole sectors of the DESTINATION, which have %" PRIu64
                   " bytes. The last sector will be filled up with zeros. Do you want to continue?",
                   range.oddBytes, sectorSizeOf(*job.order.destination));
    return job.system.ask("***** LAST SECTOR NOT FILLED *****", text.c_str());
}

std::uint32_t endDeclined(const CopyJob& job) {
    for (const DriveRecord* drive : drivesOf(job)) {
        job.system.setDriveStatus(*drive, "Idle");
    }
    return 0;
}

std::uint32_t endRefused(const CopyJob& job) {
    job.display.setStatus(" Status: Not started");
    for (const DriveRecord* drive : drivesOf(job)) {
        showNotStarted(job, *drive);
    }
    job.claim.lower();
    return 0;
}

} // namespace torvane
