#pragma once

#include "state/mount_status.h"

namespace torvane {

// What diskpart printed, read for its outcome. Texts are NUL-terminated, their lines ended by CR LF.

/// True when the current read-only state of "attributes disk" is "No". False for "Yes" and when no such line is there.
[[nodiscard]] bool reportsWritableDisk(const char* results);

/// True when that state is "Yes".
[[nodiscard]] bool reportsReadOnlyDisk(const char* results);

/// The state that "automount" tells. A report without such a line gives `kMountingUndetermined`.
[[nodiscard]] MountStatus mountStatusInReport(const char* results);

/// The state that "automount scrub" repeats two lines below its success. A report without such a line gives
/// `kMountingUndetermined`.
[[nodiscard]] MountStatus mountStatusAfterScrub(const char* results);

/// True when "clean" reports that it succeeded.
[[nodiscard]] bool reportsCleanedDisk(const char* results);

} // namespace torvane
