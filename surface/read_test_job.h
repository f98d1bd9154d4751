#pragma once

#include "base/shared_number.h"
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

/// A test that counts as at work in its drive's record, from here until the end of this.
class ReadTestAtWork {
  public:
    ReadTestAtWork(DriveRecord& drive, ReadTestKind kind);
    ~ReadTestAtWork();
    ReadTestAtWork(const ReadTestAtWork&) = delete;
    ReadTestAtWork& operator=(const ReadTestAtWork&) = delete;

  private:
    SharedNumber<std::int32_t>& runs_;
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
    std::optional<ReadTestAtWork> atWork = std::nullopt;
};

/// The drive's size in its own sectors.
[[nodiscard]] std::uint64_t sectorsOf(const DriveRecord& drive);

/// Reads the whole span from `sector` on, in one request, and leaves its time in the record. A failed or short read
/// writes one "ERROR" log row; a place that cannot be reached writes none. The job keeps which read failed.
[[nodiscard]] TransferOutcome TimedRead(ReadTestJob& job, std::span<std::byte> bytes, std::int64_t sector);

/// The test is at work from now on; before it sets its result in the record. One row in the day's log file.
void beginReadTest(ReadTestJob& job);
/// The record holds the test's result; before anything that is shown says so.
void endReadTest(ReadTestJob& job);

/// The drive's "Status" cell while the test runs and at its end, with one row in the day's log
/// file.
void showDrivePercent(ReadTestJob& job, std::uint64_t done, std::uint64_t total);
void showDriveEnding(const ReadTestJob& job, ReadTestResult result);

/// The status label at the end of a Short or NIST test.
void ShowTestOutcome(const ReadTestJob& job, int failureCount);

} // namespace torvane
