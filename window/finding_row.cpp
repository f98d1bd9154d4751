#include "window/finding_row.h"

#include "base/format.h"
#include "records/drive_record.h"

#include <algorithm>
#include <iterator>

namespace torvane {

std::optional<std::size_t> driveOfFinding(std::string_view message, std::span<const DriveRecord* const> drives) {
    const auto isOfDrive = [message](const DriveRecord* drive) {
        return message.starts_with(
            formatText("[%s] - [%s] Found Value [", drive->model.c_str(), drive->serialNumber.c_str()));
    };
    const auto found = std::ranges::find_if(drives, isOfDrive);
    return found == drives.end() ? std::nullopt
                                 : std::optional(static_cast<std::size_t>(std::distance(drives.begin(), found)));
}

} // namespace torvane
