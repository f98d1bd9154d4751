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
};

constexpr PhaseTexts kFirstPhaseTexts{"Phase 1 Critical Read Test FAILED", "Phase 1 Critical Read Test User Terminated",
                                      "Phase 1 PASSED Critical Read Test"};
constexpr PhaseTexts kLastPhaseTexts{"Phase 2 Critical Read Test FAILED", "Phase 2 Critical Read Test User Terminated",
                                     "PASSED Critical Read Test"};

void finish(const ReadTestJob& job, std::int32_t result) {
    showDriveEnding(job, result);
    job.running.turnOff();
    job.display.setProgress(0);
}

/// True when the test goes on.
bool runPhase(ReadTestJob& job, const BlockRange& range, const PhaseTexts& texts) {
    switch (const std::int32_t result = ReadRange(job, range)) {
    case kReadTestFailed:
        job.display.setStatus(texts.failed);
        finish(job, result);
        return false;
    case kReadTestTerminated:
        job.display.setStatus(texts.terminated);
        finish(job, result);
        return false;
    default:
        job.display.setStatus(texts.passed);
        return true;
    }
}

std::int32_t endRange(ReadTestJob& job, ReadTestResult result) {
    job.drive.criticalTestResult = result;
    return result;
}

} // namespace

std::int32_t ReadRange(ReadTestJob& job, const BlockRange& range) {
    job.display.startProgress(range.blockCount);
    const ReadBuffer buffer = job.system.allocate(static_cast<std::size_t>(range.blockBytes));
    if (!job.system.seek(job.drive, range.startByte)) {
        return 0;
    }
    if (!buffer) {
        return endRange(job, kReadTestFailed);
    }
    const std::span<std::byte> block(buffer.get(), static_cast<std::size_t>(range.blockBytes));
    for (std::int32_t k = 0; k < range.blockCount; ++k) {
        const std::uint64_t offset = range.startByte + static_cast<std::uint64_t>(k) * range.blockBytes;
        if (!job.system.read(job.drive, offset, block)) {
            job.failedSector = static_cast<std::int64_t>(offset / sectorSizeOf(job.drive));
            return endRange(job, kReadTestFailed);
        }
        if (!job.running.isOn()) {
            return endRange(job, kReadTestTerminated);
        }
        job.display.setProgress(k);
        showDrivePercent(job, static_cast<std::uint64_t>(range.blocksBefore) + static_cast<std::uint64_t>(k) + 1,
                         kAllBlocks);
    }
    return kReadTestPassed;
}

std::uint32_t runCriticalTest(ReadTestJob& job) {
    job.display.setStatus("Critical Read Test PHASE 1 STARTED");
    job.drive.criticalTestResult = kReadTestPassed;
    showDrivePercent(job, 0, kAllBlocks);
    // Fixed ranges, so that results compare between drives: on a smaller one the first fails at its end.
    const BlockRange first{
        .blockBytes = kBlockBytes, .blockCount = kFirstPhaseBlocks, .startByte = 0, .blocksBefore = 0};
    const BlockRange last{.blockBytes = kBlockBytes,
                          .blockCount = kLastPhaseBlocks,
                          .startByte = static_cast<std::uint64_t>(job.drive.sizeBytes) - kGibibyte,
                          .blocksBefore = kFirstPhaseBlocks};
    if (runPhase(job, first, kFirstPhaseTexts) && runPhase(job, last, kLastPhaseTexts)) {
        finish(job, kReadTestPassed);
    }
    return 1;
}

} // namespace torvane
