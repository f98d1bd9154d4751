#pragma once

#include <optional>

namespace torvane {

struct DriveRecord;

/// False, after a box that says why, for a drive that is never changed: the one that holds Windows, the program's
/// folder or the current folder, by the extents of their volumes as the system tells them now. While the place of the
/// Windows volume cannot be told, no drive may be changed. None when the user has left while the volumes were asked. On
/// the window's thread.
[[nodiscard]] std::optional<bool> mayBeChanged(const DriveRecord& drive);

} // namespace torvane
