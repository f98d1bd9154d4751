#pragma once

#include "surface/nist_sampling.h"
#include "surface/read_test_job.h"

#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

// The read tests, as they run on the calling thread. Each leaves its result in the drive's record, in the status label
// and in the drive list, and returns the thread's exit code, which is always 1. The first failed read ends a test. The
// Critical and the NIST test look at the flag of their claim, and lower it at their end. The Short test has none, and
// cannot be stopped.

/// Reads 64 KiB at each sector that the drive's own error log names as uncorrectable, or, when it names none, at 100
/// places spread evenly over the drive.
std::uint32_t runShortTest(ReadTestJob& job);

/// Reads the first 5 GiB and the last 1 GiB.
std::uint32_t runCriticalTest(ReadTestJob& job);

/// Reads two runs, a twentieth each, at random places of each of 1000 equal segments.
std::uint32_t runNistTest(ReadTestJob& job);

/// Average, least and greatest of the first `count` durations, in milliseconds, into the record; the average divides
/// the record's total by `count`. A least duration above 5000 is given as 5000.
void ComputeReadDurationStats(DriveRecord& drive, std::span<const std::int64_t> durations, std::int32_t count);

/// `blockCount` blocks from `startByte` on.
struct BlockRange {
    std::uint64_t blockBytes;
    std::int32_t blockCount;
    std::uint64_t startByte;
    std::int32_t blocksBefore; ///< blocks of the ranges before this one, for the percent in the drive list
};

/// Reads the range block by block; neither timed nor logged. Passed, failed or terminated, of which the latter two are
/// also set in the record; none, with nothing read, when the start cannot be reached.
[[nodiscard]] std::optional<ReadTestResult> ReadRange(ReadTestJob& job, const BlockRange& range);

/// The memory of the NIST test's reads.
class SegmentBuffer {
  public:
    explicit SegmentBuffer(ReadTestSystem& system) : system_(system) {}

    /// At least `size` bytes; empty when there is no memory.
    [[nodiscard]] std::span<std::byte> atLeast(std::uint64_t size);

  private:
    ReadTestSystem& system_;
    ReadBuffer memory_;
    std::size_t size_ = 0;
};

/// Reads both runs of a segment; `segment` as for PickTwoStarts. False when a read failed or there is no memory for it.
/// `buffer` is kept from one segment to the next.
[[nodiscard]] bool ProbeNistSegment(ReadTestJob& job, SegmentBuffer& buffer, const NistSegment& segment);

} // namespace torvane
