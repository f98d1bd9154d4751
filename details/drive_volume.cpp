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
        const auto note = std::ranges::find(drive.bitLockerNotes, letter, &BitLockerNote::driveLetter);
        if (note == drive.bitLockerNotes.end()) {
            return "not checked for BitLocker; Detect Bitlocker checks it";
        }
        return note->isTold ? "not encrypted by BitLocker" : "Windows does not tell whether BitLocker encrypts it";
    }
    return found->hasKey == 1 ? "encrypted by BitLocker, recovery password read"
                              : "encrypted by BitLocker, recovery password not read";
}

} // namespace torvane
