#pragma once

#include "base/transfer_outcome.h"
#include "discovery/drive_io.h"
#include "jobs/jobs.h"
#include "records/read_test_result.h"
#include "surface/read_test_display.h"
#include "surface/read_test_kind.h"
#include "surface/read_test_system.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

/// The read that failed, and how; nothing that is shown tells yet why.
struct FailedRead {
    std::int64_t sector; ///< the first of the read
    TransferOutcome outcome;
};

/// One run of a read test, and what it works with. Its thread alone uses it.
struct ReadTestJob {
    ReadTestKind kind;
    DriveRecord& drive;
    DriveIo& io;
    ReadTestSystem& system;
    ReadTestDisplay& display;
    JobClaim& claim; ///< the Short test neither looks at it nor lowers its flag

    std::optional<FailedRead> failedRead;
    std::int32_t shownPercent = -1; ///< in the drive list
};

/// The drive's size in its own sectors.
[[nodiscard]] std::uint64_t sectorsOf(const DriveRecord& drive);

/// Reads the whole span from `sector` on, in one request, and leaves its time in the record. A failed or short read
/// writes one "ERROR" log row; a place that cannot be reached writes none. The job keeps which read failed.
[[nodiscard]] TransferOutcome TimedRead(ReadTestJob& job, std::span<std::byte> bytes, std::int64_t sector);

/// The drive's "Status" cell while the test runs and at its end.
void showDrivePercent(ReadTestJob& job, std::uint64_t done, std::uint64_t total);
void showDriveEnding(const ReadTestJob& job, ReadTestResult result);

/// The status label at the end of a Short or NIST test.
void ShowTestOutcome(const ReadTestJob& job, int failureCount);

} // namespace torvane
