#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace torvane {

/// Bytes of a line of the listing that are read, with the NUL behind them; longer lines are cut.
inline constexpr std::size_t kListingLineRoom = 4096;

/// A device of the tool's listing, one line of "smartctl --scan":
///
///     /dev/sdb -d ata # /dev/sdb, ATA device
struct ListedDevice {
    std::string name;        ///< the tool's name for it; empty when the line has fewer than three words
    std::string commandPart; ///< what names it on the tool's command line
    std::int32_t driveNumber =
        -1; ///< physical drive number; -1: not named as a drive of the system, /dev/sda to /dev/sdz
};

/// Reads one line of the listing into `device`, which holds the line before it: a line with fewer than three words
/// keeps that line's drive number, and names the device by the line's own text.
void readListedDevice(const char* line, ListedDevice& device);

/// The command line that has the tool print all that it knows of a device.
[[nodiscard]] std::string reportCommandLine(const ListedDevice& device);

} // namespace torvane
