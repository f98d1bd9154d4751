#include "surface/read_tests.h"

#include "base/format.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>

namespace torvane {

namespace {

constexpr std::size_t kProbeBytes = 65536;
constexpr std::int32_t kProbes = 100;

using ProbeBuffer = std::array<std::byte, kProbeBytes>;

void showFailedProbe(const ReadTestJob& job, std::int64_t sector) {
    job.display.setStatus(formatText("Short Test: Read FAILED at Sector [%" PRId64 "]", sector));
    job.drive.shortTestResult = ReadTestResult::kFailed;
}

std::span<const std::int64_t> loggedSectors(const DriveRecord& drive) {
    const auto count = static_cast<std::size_t>(std::max<std::int32_t>(drive.uncLbaCount, 0));
    return std::span(drive.uncLbas).first(std::min(count, drive.uncLbas.size()));
}

/// The number of failures: 0 or 1.
int probeLoggedSectors(ReadTestJob& job, ProbeBuffer& buffer) {
    for (const std::int64_t sector : loggedSectors(job.drive)) {
        if (TimedRead(job, buffer, sector) != TransferOutcome::kWhole) {
            showFailedProbe(job, sector);
            return 1;
        }
    }
    return 0;
}

// Not the sector that failed but the empty list's entry of that index, so 0; kept: users know the line so.
std::int64_t sectorToPrint(const DriveRecord& drive, std::int32_t probe) {
    const auto index = static_cast<std::size_t>(probe);
    return index < drive.uncLbas.size() ? drive.uncLbas[index] : 0;
}

int probeEvenly(ReadTestJob& job, ProbeBuffer& buffer, std::span<std::int64_t> durations) {
    const std::uint64_t step = sectorsOf(job.drive) / kProbes;
    for (std::int32_t probe = 0; probe < kProbes; ++probe) {
        const auto sector = static_cast<std::int64_t>(static_cast<std::uint64_t>(probe) * step);
        if (TimedRead(job, buffer, sector) != TransferOutcome::kWhole) {
            showFailedProbe(job, sectorToPrint(job.drive, probe));
            return 1;
        }
        durations[static_cast<std::size_t>(probe)] = job.drive.readTimes.lastReadMs;
        job.drive.readTimes.readDurationCount = probe + 1;
        job.drive.readTimes.readDurationTotal += job.drive.readTimes.lastReadMs;
        // The main window's bar, although the dialog's got the range: the test goes on when its dialog is closed.
        job.system.setWideProgress(probe);
        showDrivePercent(job, static_cast<std::uint64_t>(probe) + 1, kProbes);
    }
    return 0;
}

} // namespace

void ComputeReadDurationStats(DriveRecord& drive, std::span<const std::int64_t> durations, std::int32_t count) {
    constexpr std::int64_t kLeastAtFirst = 5000;
    std::int64_t least = kLeastAtFirst;
    std::int64_t greatest = -1;
    for (const std::int64_t duration : durations.first(static_cast<std::size_t>(count))) {
        greatest = std::max(greatest, duration);
        least = std::min(least, duration);
    }
    drive.readTimes.readDurationAverage = drive.readTimes.readDurationTotal / count;
    drive.readTimes.readDurationMin = least;
    drive.readTimes.readDurationMax = greatest;
}

std::uint32_t runShortTest(ReadTestJob& job) {
    job.display.setStatus("Short Read Test STARTED");
    job.display.startProgress(kProbes);
    beginReadTest(job);
    job.drive.shortTestResult = ReadTestResult::kPassed;
    job.drive.readTimes.readDurationTotal = 0;
    job.drive.readTimes.readDurationCount = 0;
    showDrivePercent(job, 0, kProbes);

    ProbeBuffer buffer{};
    std::array<std::int64_t, kProbes> durations{};
    const int failures =
        job.drive.uncLbaCount > 0 ? probeLoggedSectors(job, buffer) : probeEvenly(job, buffer, durations);

    ComputeReadDurationStats(job.drive, durations, kProbes);
    endReadTest(job);
    ShowTestOutcome(job, failures);
    showDriveEnding(job, failures == 0 ? ReadTestResult::kPassed : ReadTestResult::kFailed);
    job.display.setProgress(0);
    return 1;
}

} // namespace torvane
