#pragma once

namespace torvane {

struct DriveRecord;

/// False, after a box that says why, for a drive that is never changed: the one that holds Windows, the program's
/// folder or the current folder, by the extents of their volumes as the system tells them now. While the place of the
/// Windows volume cannot be told, no drive may be changed.
[[nodiscard]] bool mayBeChanged(const DriveRecord& drive);

} // namespace torvane
