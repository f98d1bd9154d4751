#include "surface/read_test_job.h"

#include "base/format.h"
#include "records/drive_texts.h"
#include "records/sector_size.h"
#include "surface/read_test_texts.h"

#include <cinttypes>

namespace torvane {

std::uint64_t sectorsOf(const DriveRecord& drive) {
    return static_cast<std::uint64_t>(drive.sizeBytes) / sectorSizeOf(drive);
}

namespace {

TransferOutcome readAndTime(ReadTestJob& job, std::uint64_t offset, std::span<std::byte> bytes) {
    job.system.beginFineClock();
    const std::int64_t start = job.system.milliseconds();
    const TransferOutcome outcome = job.io.read(job.drive, offset, bytes);
    const std::int64_t end = job.system.milliseconds();
    job.system.endFineClock();
    job.drive.readTimes.lastReadStart = start;
    job.drive.readTimes.lastReadEnd = end;
    // Where the clock wrapped in between, the difference is negative and its sign is dropped, wrong as the time is.
    job.drive.readTimes.lastReadMs = end >= start ? end - start : start - end;
    return outcome;
}

SharedNumber<std::int32_t>& runsAtWork(DriveRecord& drive, ReadTestKind kind) {
    switch (kind) {
    case kShortReadTest:
        return drive.readTestsAtWork.shortTests;
    case kCriticalReadTest:
        return drive.readTestsAtWork.criticalTests;
    case kNistReadTest:
        break;
    }
    return drive.readTestsAtWork.nistTests;
}

std::string jobText(const ReadTestJob& job) {
    return std::string(readTestName(job.kind)) + " of " + jobDriveText(job.drive);
}

} // namespace

ReadTestAtWork::ReadTestAtWork(DriveRecord& drive, ReadTestKind kind) : runs_(runsAtWork(drive, kind)) {
    ++runs_;
}

ReadTestAtWork::~ReadTestAtWork() {
    runs_ += -1;
}

void beginReadTest(ReadTestJob& job) {
    job.atWork.emplace(job.drive, job.kind);
    job.system.logJob(jobText(job) + " begins");
}

void endReadTest(ReadTestJob& job) {
    job.atWork.reset();
}

TransferOutcome TimedRead(ReadTestJob& job, std::span<std::byte> bytes, std::int64_t sector) {
    const std::uint64_t offset = static_cast<std::uint64_t>(sector) * sectorSizeOf(job.drive);
    if (!job.io.canReach(job.drive, offset)) {
        job.failedRead = {sector, TransferOutcome::kNotReached};
        return TransferOutcome::kNotReached;
    }
    const TransferOutcome outcome = readAndTime(job, offset, bytes);
    if (outcome != TransferOutcome::kWhole) {
        job.failedRead = {sector, outcome};
        job.system.log("ERROR", formatText("BAD READ BLOCK AT SECTOR: [%" PRId64 "] for <%d> bytes", sector,
                                           static_cast<int>(bytes.size())));
    }
    return outcome;
}

void showDrivePercent(ReadTestJob& job, std::uint64_t done, std::uint64_t total) {
    const auto percent = static_cast<std::int32_t>(done * 100 / total);
    if (percent != job.shownPercent) {
        job.shownPercent = percent;
        job.system.setDriveStatus(job.drive, driveProgressText(readTestName(job.kind), percent));
    }
}

void showDriveEnding(const ReadTestJob& job, ReadTestResult result) {
    const auto sector = job.failedRead ? std::optional(job.failedRead->sector) : std::nullopt;
    const std::string ending = readTestDriveStatus(readTestName(job.kind), {result, sector});
    job.system.setDriveStatus(job.drive, ending);
    job.system.logJob(jobText(job) + " ended: " + ending);
}

void ShowTestOutcome(const ReadTestJob& job, int failureCount) {
    job.display.setStatus(readTestOutcomeLine(readTestName(job.kind), failureCount));
}

} // namespace torvane
