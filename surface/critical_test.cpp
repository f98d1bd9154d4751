#include "surface/read_tests.h"

#include "records/sector_size.h"

#include <array>
#include <string_view>

namespace torvane {

namespace {

constexpr std::uint64_t kBlockBytes = 0x2000000; // 32 MiB
constexpr std::uint64_t kGibibyte = 0x40000000;
constexpr std::int32_t kFirstPhaseBlocks = 160;
constexpr std::int32_t kLastPhaseBlocks = 32;
constexpr std::int32_t kAllBlocks = kFirstPhaseBlocks + kLastPhaseBlocks;

struct PhaseTexts {
    std::string_view failed;
    std::string_view terminated;
    std::string_view passed;
    bool endsTest; ///< the passed phase is the test's last
};

constexpr PhaseTexts kFirstPhaseTexts{"Phase 1 Critical Read Test FAILED", "Phase 1 Critical Read Test User Terminated",
                                      "Phase 1 PASSED Critical Read Test", false};
constexpr PhaseTexts kLastPhaseTexts{"Phase 2 Critical Read Test FAILED", "Phase 2 Critical Read Test User Terminated",
                                     "PASSED Critical Read Test", true};

void finish(const ReadTestJob& job, ReadTestResult result) {
    showDriveEnding(job, result);
    job.claim.lower();
    job.display.setProgress(0);
}

/// True when the test goes on.
bool runPhase(ReadTestJob& job, const BlockRange& range, const PhaseTexts& texts) {
    // A phase whose start cannot be reached counts as passed. Kept.
    const ReadTestResult result = ReadRange(job, range).value_or(ReadTestResult::kPassed);
    if (result != ReadTestResult::kPassed || texts.endsTest) {
        endReadTest(job);
    }
    switch (result) {
    case ReadTestResult::kFailed:
        job.display.setStatus(texts.failed);
        break;
    case ReadTestResult::kTerminated:
        job.display.setStatus(texts.terminated);
        break;
    case ReadTestResult::kPassed:
    case ReadTestResult::kNotPerformed:
        job.display.setStatus(texts.passed);
        return true;
    }
    finish(job, result);
    return false;
}

ReadTestResult endRange(ReadTestJob& job, ReadTestResult result) {
    job.drive.criticalTestResult = result;
    return result;
}

} // namespace

std::optional<ReadTestResult> ReadRange(ReadTestJob& job, const BlockRange& range) {
    job.display.startProgress(range.blockCount);
    const ReadBuffer buffer = job.system.allocate(static_cast<std::size_t>(range.blockBytes));
    if (!job.io.canReach(job.drive, range.startByte)) {
        return std::nullopt;
    }
    if (!buffer) {
        return endRange(job, ReadTestResult::kFailed);
    }
    const std::span<std::byte> block(buffer.get(), static_cast<std::size_t>(range.blockBytes));
    for (std::int32_t k = 0; k < range.blockCount; ++k) {
        const std::uint64_t offset = range.startByte + static_cast<std::uint64_t>(k) * range.blockBytes;
        if (const TransferOutcome outcome = job.io.read(job.drive, offset, block); outcome != TransferOutcome::kWhole) {
            job.failedRead = {static_cast<std::int64_t>(offset / sectorSizeOf(job.drive)), outcome};
            return endRange(job, ReadTestResult::kFailed);
        }
        if (!job.claim.isRaised()) {
            return endRange(job, ReadTestResult::kTerminated);
        }
        job.display.setProgress(k);
        showDrivePercent(job, static_cast<std::uint64_t>(range.blocksBefore) + static_cast<std::uint64_t>(k) + 1,
                         kAllBlocks);
    }
    return ReadTestResult::kPassed;
}

std::uint32_t runCriticalTest(ReadTestJob& job) {
    job.display.setStatus("Critical Read Test PHASE 1 STARTED");
    beginReadTest(job);
    job.drive.criticalTestResult = ReadTestResult::kPassed;
    showDrivePercent(job, 0, kAllBlocks);
    // Fixed ranges, so that results compare between drives: on a smaller one the first fails at its end.
    const BlockRange first{
        .blockBytes = kBlockBytes, .blockCount = kFirstPhaseBlocks, .startByte = 0, .blocksBefore = 0};
    const BlockRange last{.blockBytes = kBlockBytes,
                          .blockCount = kLastPhaseBlocks,
                          .startByte = static_cast<std::uint64_t>(job.drive.sizeBytes) - kGibibyte,
                          .blocksBefore = kFirstPhaseBlocks};
    if (runPhase(job, first, kFirstPhaseTexts) && runPhase(job, last, kLastPhaseTexts)) {
        finish(job, ReadTestResult::kPassed);
    }
    return 1;
}

} // namespace torvane
