#pragma once

#include <optional>

namespace torvane {

/// Whether the system mounts new volumes by itself, as its mount manager tells (IOCTL_MOUNTMGR_QUERY_AUTO_MOUNT);
/// nothing where it does not.
[[nodiscard]] std::optional<bool> readAutoMount();

} // namespace torvane
