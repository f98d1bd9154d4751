#pragma once

namespace torvane {

class Jobs;

/// False while somebody is at work that a scan waits for: silently while a job shows that it runs, otherwise with a box
/// that says who it is. On the window's thread.
[[nodiscard]] bool mayLoadDrives(const Jobs& jobs);

} // namespace torvane
