#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

struct DriveRecord;

/// The drive's size in its own sectors, whatever their size; "Not Available" when the sector size is not known.
[[nodiscard]] std::string sizeSectorsText(const DriveRecord& record);

/// The drive's size in units of 2^30 bytes, two decimals.
[[nodiscard]] std::string sizeGigabytesText(const DriveRecord& record);

/// The drive in the rows of a job in the day's log file: "disk 003 - MODEL SERIAL, 500107862016 bytes".
[[nodiscard]] std::string jobDriveText(const DriveRecord& record);

/// The "Status" cell of a drive while a job runs: "Cloning 37%".
[[nodiscard]] std::string driveProgressText(std::string_view activity, std::int32_t percent);

} // namespace torvane
