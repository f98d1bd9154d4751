#include "details/drive_volume.h"

#include "records/drive_record.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace torvane {

std::string_view bitLockerText(const DriveRecord& drive, char letter) {
    const auto entries = std::span(drive.bitLockerEntries).first(static_cast<std::size_t>(drive.bitLockerEntryCount));
    const auto found = std::ranges::find(entries, letter, &BitLockerVolumeEntry::driveLetter);
    if (found == entries.end()) {
        return "no BitLocker found so far; Detect Bitlocker checks it";
    }
    return found->hasKey == 1 ? "encrypted by BitLocker, recovery password read"
                              : "encrypted by BitLocker, recovery password not read";
}

} // namespace torvane
