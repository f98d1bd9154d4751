#pragma once

namespace torvane {

struct ScanState;

/// Brings the scan's volume table up to date: letters may have been given and moved since the drives were loaded. On
/// the window's thread, which goes on answering meanwhile. False: the user has left it, and the table is the old one.
[[nodiscard]] bool bringVolumesUpToDate(ScanState& scan);

} // namespace torvane
