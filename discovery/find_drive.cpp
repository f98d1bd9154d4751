#include "discovery/find_drive.h"

#include "base/owned_handle.h"
#include "discovery/disk_identity.h"
#include "discovery/physical_drive_probe.h"

namespace torvane {

std::optional<FoundDrive> findDriveAgain(const DriveRecord& drive, int drives, std::optional<int> except) {
    UniqueHandle found;
    int foundNumber = 0;
    for (int number = 0; number < drives; ++number) {
        if (number == except) {
            continue;
        }
        UniqueHandle device(openDriveByNumber(number));
        if (!device || !isTheProbedDiskAgain(drive, device.get())) {
            continue;
        }
        if (found) {
            return std::nullopt; // two bridges that tell the same
        }
        found = std::move(device);
        foundNumber = number;
    }
    return found ? std::optional(FoundDrive{.handle = found.release(), .number = foundNumber}) : std::nullopt;
}

} // namespace torvane
