#pragma once

#include "copy/engine/block_layout.h"
#include "copy/engine/block_sink.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/copy_range.h"
#include "copy/jobs/job_account.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace torvane {

// What has to be sure before a job's first block.

/// The job's drives: source, destination, or the one that it has.
[[nodiscard]] std::vector<const DriveRecord*> drivesOf(const CopyJob& job);

enum class Readiness {
    kReady,
    kStopped, ///< the job was asked to stop before or meanwhile
    kRefused, ///< a drive has changed, or the destination could not be cleaned; the user knows. No block may be moved
};

/// True while the job's source is the drive that was loaded; a box tells when it is not, and with `untouched`, a whole
/// sentence without its full stop, what was not done.
[[nodiscard]] bool isSourceUnchanged(const CopyJob& job, std::string_view untouched = "Nothing was written");

/// True while source, if the job has one, and destination are the drives that were loaded; a box tells which is not.
[[nodiscard]] bool areDrivesUnchanged(const CopyJob& job);

/// Asks both drives whether they are those that were loaded, wipes the destination's partition table, because the
/// system refuses raw writes inside a mounted volume, and asks both once more: cleaning takes its time. The source
/// comes first, so that one that has gone costs the destination nothing. Where there is no block to write, nothing is
/// asked and nothing is wiped. A destination that could not be cleaned is written to when the user wants it. Call it
/// with the job's flag up.
[[nodiscard]] Readiness prepareDestination(const CopyJob& job, const BlockOrder& order);

/// True when no volume is mounted on the destination, and so each write is let through. Ask it before the first block.
[[nodiscard]] bool isDestinationUnmounted(const CopyJob& job);

/// True when writes began to be refused, and a volume is mounted on the destination. Ask it before `adoptNewTable`, by
/// which volumes may come that have cost no write.
[[nodiscard]] bool wasMountedMeanwhile(const CopyJob& job, const DriveSink& sink);

/// After the last block, however the run ended: the system is told to read the new partition table, whole or not, so
/// that it shows what the drive holds, and the drive is known by it. A drive that has got nothing, or has gone, is not
/// asked. One "ERROR" row when the system could not.
void adoptNewTable(const CopyJob& job, const DriveSink& sink);

/// The system is told to read the destination's new partition table. One "ERROR" row when it could not.
void showNewTableToSystem(const CopyJob& job);

/// Runs a job that writes to a drive as `runAccounted` does. When a volume was mounted on the drive in the middle of
/// it, a box tells the user at its end what that has cost, and what helps.
std::uint32_t runOntoDrive(const CopyJob& job, const std::function<std::uint32_t(JobAccount&)>& run);

/// Asks whether the last sector may be filled up with zeros, where the range does not fill it. `what` is copied:
/// "image", "SOURCE".
[[nodiscard]] bool isPaddingWanted(const CopyJob& job, const CopyRange& range, std::string_view what);

/// Ends a job that the user did not want once he had been asked: its drives are as idle as before, and nothing of an
/// earlier job is left in their "Status" cells. Returns the job's exit code.
std::uint32_t endDeclined(const CopyJob& job);

/// Ends a job that was refused before its first block: no drive has got or given a byte. Returns the job's exit code.
std::uint32_t endRefused(const CopyJob& job);

} // namespace torvane
