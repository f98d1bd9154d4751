#pragma once

#include "details/detail_page.h"
#include "details/drive_volume.h"

#include <optional>
#include <string>
#include <vector>

namespace torvane {

struct DriveRecord;

/// What the details of a drive are made of, beside what its record holds.
struct DetailSubject {
    const DriveRecord& drive;
    std::vector<DriveVolume> volumes;
    std::optional<bool> readOnly; ///< the disk's attribute, as the system tells it now; none: it does not tell
};

/// The pages: drive, health, attributes, self-tests, error log, statistics, and the tool's own text. Each is there for
/// every drive; one that has nothing to show says why. They share nothing with the record.
[[nodiscard]] std::vector<DetailPage> drivePages(const DetailSubject& subject);

} // namespace torvane
