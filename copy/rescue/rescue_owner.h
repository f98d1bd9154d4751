#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

/// Whose rescue a map and a record are of.
enum class RescueOwner : std::uint8_t {
    kThisDrive,
    kOtherDrive,
    kPerhapsThis, ///< another model or serial number, and one of its serial numbers: so it is behind another bridge
    kNotTold,     ///< another program has made the map, and there is no record; or the drive has no serial number
};

/// Compares what a map's comments and an acquisition record say of their drive, as far as they do, with this one.
[[nodiscard]] RescueOwner rescueOwner(const std::vector<std::string>& comments,
                                      const std::optional<std::string>& record, const DriveRecord& drive);

} // namespace torvane
