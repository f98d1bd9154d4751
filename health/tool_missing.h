#pragma once

namespace torvane {

struct DriveRecord;

/// True when the drive has no report and there is no smartctl.exe where a program is looked for that is started by its
/// name (CreateProcess, SearchPath).
[[nodiscard]] bool isToolMissed(const DriveRecord& drive);

} // namespace torvane
