#pragma once

#include "details/drive_volume.h"

#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// What the system tells of a drive when its details are asked for.
struct ToldByWindows {
    std::vector<DriveVolume> volumes; ///< by letter
    std::optional<bool> readOnly;     ///< the disk's attribute; none: not told
};

/// Asks the system for the volumes with these letters and for the attribute of the disk behind the device path. A disk
/// that does not answer holds it up.
[[nodiscard]] ToldByWindows askWindows(const std::string& devicePath, const std::vector<char>& letters);

/// The same without asking: the letters alone.
[[nodiscard]] ToldByWindows untold(const std::vector<char>& letters);

} // namespace torvane
