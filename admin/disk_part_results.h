#pragma once

#include "records/partition_table.h"
#include "state/mount_status.h"

#include <optional>

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

/// What a run of "clean" tells of itself.
enum class CleanReport {
    kNotRun,        ///< not to its end
    kSucceeded,     ///< in as many words
    kRefused,       ///< English without them, or nothing at all
    kOtherLanguage, ///< diskpart prints in the language of the system
};

[[nodiscard]] CleanReport cleanReport(const char* results);

/// True when a run of "clean" has cleaned the disk, by the tables that the disk told before and after it (none: it does
/// not tell) and by what diskpart reports. A run that did not come to its end never has. Without a table the report
/// decides. With one, partitions that are left are the proof that nothing was cleaned; where none are, it was, unless
/// diskpart says in English that it refused, and the table is none but the one before.
[[nodiscard]] bool wasCleaned(const std::optional<PartitionTable>& before, const std::optional<PartitionTable>& after,
                              CleanReport reported);

} // namespace torvane
