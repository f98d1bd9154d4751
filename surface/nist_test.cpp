#include "surface/read_tests.h"

#include "base/format.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cinttypes>
#include <limits>

namespace torvane {

namespace {

constexpr std::uint64_t kBlockBytes = 0x2000000; // 32 MiB

/// So many sectors of 512 bytes make a block. On a drive with larger sectors the blocks of a run leave gaps; kept:
/// earlier results compare.
constexpr std::uint64_t kBlockSectors = 65536;

/// One of the two runs: whole blocks, then the rest in one read.
struct Run {
    std::uint64_t fullBlocks;
    std::uint64_t restBytes;
};

Run layOutRun(const DriveRecord& drive, std::uint64_t sectors) {
    return {.fullBlocks = sectors / kBlockSectors, .restBytes = sectors % kBlockSectors * sectorSizeOf(drive)};
}

bool readRun(ReadTestJob& job, std::span<std::byte> buffer, const Run& run, std::int64_t start) {
    std::int64_t position = start;
    for (std::uint64_t block = 0; block < run.fullBlocks; ++block) {
        if (TimedRead(job, buffer.first(kBlockBytes), position) != TransferOutcome::kWhole) {
            return false;
        }
        position += kBlockSectors;
    }
    return run.restBytes == 0 ||
           TimedRead(job, buffer.first(static_cast<std::size_t>(run.restBytes)), position) == TransferOutcome::kWhole;
}

enum class Sampling { kWhole, kFailed, kTerminated };

Sampling sampleSegments(ReadTestJob& job, std::uint64_t segmentSectors) {
    SegmentBuffer buffer(job.system);
    for (std::int32_t i = 0; i < kNistSegments; ++i) {
        const auto start = static_cast<std::int64_t>(static_cast<std::uint64_t>(i) * segmentSectors);
        job.display.setStatus(formatText("Testing [%" PRId64 "]", start));
        if (!ProbeNistSegment(job, buffer, {start, segmentSectors})) {
            // The segment's first sector, whichever read failed: it names the segment, as in the status line before.
            job.display.setStatus(formatText("NIST Read FAILED at Sector [%" PRId64 "]", start));
            return Sampling::kFailed;
        }
        if (!job.claim.isRaised()) {
            return Sampling::kTerminated;
        }
        job.display.setProgress(i);
        showDrivePercent(job, static_cast<std::uint64_t>(i) + 1, kNistSegments);
    }
    return Sampling::kWhole;
}

} // namespace

std::span<std::byte> SegmentBuffer::atLeast(std::uint64_t size) {
    // A read takes its length as a signed number of 32 bits.
    if (size > std::numeric_limits<std::int32_t>::max()) {
        return {};
    }
    if (size > size_) {
        memory_.reset();
        memory_ = system_.allocate(static_cast<std::size_t>(size));
        size_ = memory_ ? static_cast<std::size_t>(size) : 0;
    }
    return {memory_.get(), size_};
}

bool ProbeNistSegment(ReadTestJob& job, SegmentBuffer& buffer, const NistSegment& segment) {
    const std::uint64_t runSectors = nistRunSectors(segment);
    const Run run = layOutRun(job.drive, runSectors);
    const TwoStarts starts = PickTwoStarts(segment, runSectors, [&] { return job.system.random(); });
    // With large sectors the rest may be longer than a block.
    const std::span<std::byte> memory = buffer.atLeast(std::max(kBlockBytes, run.restBytes));
    if (memory.empty()) {
        return false;
    }
    return readRun(job, memory, run, starts.first) && readRun(job, memory, run, starts.second);
}

std::uint32_t runNistTest(ReadTestJob& job) {
    job.display.startProgress(kNistSegments);
    beginReadTest(job);
    job.drive.nistTestResult = ReadTestResult::kPassed;
    job.display.setStatus("NIST Read Test STARTED");
    showDrivePercent(job, 0, kNistSegments);

    switch (sampleSegments(job, sectorsOf(job.drive) / kNistDivisions)) {
    case Sampling::kWhole:
        endReadTest(job);
        ShowTestOutcome(job, 0);
        break;
    case Sampling::kFailed:
        job.drive.nistTestResult = ReadTestResult::kFailed;
        endReadTest(job);
        ShowTestOutcome(job, 1);
        break;
    case Sampling::kTerminated:
        job.drive.nistTestResult = ReadTestResult::kTerminated;
        endReadTest(job);
        job.display.setStatus("NIST Random Read Test User Terminated");
        break;
    }
    showDriveEnding(job, job.drive.nistTestResult);
    job.claim.lower();
    job.display.setProgress(0);
    return 1;
}

} // namespace torvane
