#pragma once

namespace torvane {

class Jobs;
struct DriveRecord;
struct VolumeTable;

// On the window's thread.

/// What must hold before a disk's attribute may be changed: no job and no scan is at work, and the record is a disk. A
/// guard that refuses has shown its box.
[[nodiscard]] bool mayChangeDisk(const Jobs& jobs, const DriveRecord& drive);

/// The same before a disk may be cleaned; the system drive never may.
[[nodiscard]] bool mayCleanDisk(const Jobs& jobs, const VolumeTable& volumes, const DriveRecord& drive);

/// The question before the disk's read-only attribute is set (`wanted`) or cleared, which names the disk.
[[nodiscard]] bool confirmReadOnlyChange(const DriveRecord& drive, bool wanted);

} // namespace torvane
