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

/// The drive's interface, in lists and reports. A record with `kBusCodeOwnText` and standard SMART data gets "SATA USB"
/// as its bus text first. Empty for a bus code outside the list.
[[nodiscard]] std::string interfaceText(DriveRecord& record);

/// What the drive's label has, where its controller tells another serial number or model than the lists show: "serial
/// number HG51-2290, model HARROW N512, firmware HG2A". Empty when it told nothing else, or nothing that is printable.
[[nodiscard]] std::string printedIdentityText(const DriveRecord& record);

/// The drive in the rows of a job in the day's log file: "disk 003 - MODEL SERIAL, 500107862016 bytes", and
/// what is printed on it where that is something else.
[[nodiscard]] std::string jobDriveText(const DriveRecord& record);

/// The "Status" cell of a drive while a job runs: "Cloning 37%".
[[nodiscard]] std::string driveProgressText(std::string_view activity, std::int32_t percent);

} // namespace torvane
