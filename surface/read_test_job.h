#pragma once

#include "surface/read_test_display.h"
#include "surface/read_test_kind.h"
#include "surface/read_test_state.h"
#include "surface/read_test_system.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

/// One run of a read test, and what it works with. Its thread alone uses it.
struct ReadTestJob {
    ReadTestKind kind;
    DriveRecord& drive;
    ReadTestSystem& system;
    ReadTestDisplay& display;
    ReadTestSwitch running; ///< the Short test neither looks at it nor turns it off

    std::optional<std::int64_t> failedSector; ///< the first sector of the read that failed
    std::int32_t shownPercent = -1;           ///< in the drive list
};

/// The drive's size in its own sectors.
[[nodiscard]] std::uint64_t sectorsOf(const DriveRecord& drive);

/// Reads the whole span from `sector` on, in one request, and leaves its time in the record. A failed or short read
/// writes one "ERROR" log row; a failed move of the file pointer writes none. Both are false.
[[nodiscard]] bool TimedRead(ReadTestJob& job, std::span<std::byte> bytes, std::int64_t sector);

/// The drive's "Status" cell while the test runs and at its end.
void showDrivePercent(ReadTestJob& job, std::uint64_t done, std::uint64_t total);
void showDriveEnding(const ReadTestJob& job, std::int32_t result);

/// The status label at the end of a Short or NIST test.
void ShowTestOutcome(const ReadTestJob& job, int failureCount);

} // namespace torvane
