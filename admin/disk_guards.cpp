#include "admin/disk_guards.h"

#include "base/format.h"
#include "discovery/drive_volumes.h"
#include "jobs/jobs.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "ui/prompts.h"

#include <string>

namespace torvane {

bool mayChangeDisk(const Jobs& jobs, const DriveRecord& drive) {
    constexpr const char* kWorking = "***** Working *****";
    const Jobs::Obstacle obstacle = jobs.whyNot(JobKind::kDiskChange);
    if (obstacle.kinds.contains(JobKind::kScan)) {
        prompts::stop(kWorking, "Drive Loader is Working");
        return false;
    }
    if (obstacle.kinds.contains(JobKind::kShortTest)) {
        prompts::stop(kWorking, "Short Test is Running");
        return false;
    }
    // A copy or a read test that was told to stop uses its drives until its last read is done.
    if (obstacle) {
        prompts::stop(kWorking, "A Job is Working");
        return false;
    }
    if (drive.recordKind == kRecordKindImageFile) {
        prompts::stop("***** IMAGE FILE *****", "An image file is no disk of this computer");
        return false;
    }
    return true;
}

bool mayCleanDisk(const Jobs& jobs, const VolumeTable& volumes, const DriveRecord& drive) {
    if (!mayChangeDisk(jobs, drive)) {
        return false;
    }
    if (isMarkedByMistake(drive, volumes)) {
        prompts::stop("***** MARKED DRIVE *****",
                      "The numbers of the drives have a gap, and so this drive was marked in place of the one that "
                      "holds volume C:. It cannot be cleaned here. Nothing was written");
        return false;
    }
    if (isSystemDrive(drive, volumes)) {
        prompts::stop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
        return false;
    }
    return true;
}

bool confirmReadOnlyChange(const DriveRecord& drive, bool wanted) {
    const std::string disk = formatText("Disk %03d - %s %s, %s GB. ", drive.driveNumber, drive.model.c_str(),
                                        drive.serialNumber.c_str(), sizeGigabytesText(drive).c_str());
    return wanted ? prompts::askDefaultNo("***** SET READ-ONLY *****",
                                          (disk + "Nobody will be able to write to it until its read-only attribute is "
                                                  "cleared again. Do you want to set it READ-ONLY?")
                                              .c_str())
                  : prompts::askDefaultNo("***** CLEAR READ-ONLY *****",
                                          (disk + "Windows and every program will be able to write to it. Do you want "
                                                  "to CLEAR its read-only attribute?")
                                              .c_str());
}

} // namespace torvane
