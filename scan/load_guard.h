#pragma once

namespace torvane {

class Jobs;

/// False while somebody is at work that a scan waits for: with a box for a scan and a Short test, otherwise silently.
/// On the window's thread.
[[nodiscard]] bool mayLoadDrives(const Jobs& jobs);

} // namespace torvane
