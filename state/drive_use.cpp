#include "state/drive_use.h"

#include "base/format.h"
#include "records/drive_record.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <string>

namespace torvane {

namespace {

void tellOtherUser(const DriveRecord& drive) {
    const std::string name =
        formatText("Drive %d - %s %s", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str());
    LogEvent("ERROR", "%s is used by another Torvane: nothing was started", name.c_str());
    prompts::stop("***** DRIVE IN USE *****", (name + " is used by another Torvane on this computer.\n\nNothing was "
                                                      "started, and nothing was done to the drive. Wait for the end of "
                                                      "the job there, or terminate it, and try again.")
                                                  .c_str());
}

} // namespace

std::optional<DriveUse> useDrives(std::initializer_list<const DriveRecord*> drives) {
    DriveUse use;
    use.reserve(drives.size());
    for (const DriveRecord* const drive : drives) {
        if (drive == nullptr || drive->recordKind == kRecordKindImageFile) {
            continue;
        }
        MachineClaim claim(L"Torvane.PhysicalDrive" + std::to_wstring(drive->driveNumber));
        if (!claim.claim()) {
            tellOtherUser(*drive);
            return std::nullopt;
        }
        use.push_back(std::move(claim));
    }
    return use;
}

} // namespace torvane
