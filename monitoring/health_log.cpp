#include "monitoring/health_log.h"

#include "discovery/controller_identity.h"

namespace torvane {
namespace {

// NVMe Base Specification, figure "SMART / Health Information Log Page".
constexpr std::size_t kCriticalWarningAt = 0;
constexpr std::size_t kAvailableSpareAt = 3;
constexpr std::size_t kAvailableSpareThresholdAt = 4;
constexpr std::size_t kPercentageUsedAt = 5;
constexpr std::size_t kDataUnitsReadAt = 32;
constexpr std::size_t kDataUnitsWrittenAt = 48;
constexpr std::size_t kPowerOnHoursAt = 128;
constexpr std::size_t kErrorLogEntriesAt = 160; // the standard calls these media and data integrity errors

constexpr std::uint64_t kBytesPerDataUnit = 512'000; // 1000 units of 512 bytes
constexpr double kRatedEnduranceTerabytes = 7000.0;

std::int32_t byteAt(ByteView log, std::size_t offset) {
    return loadLe<std::uint8_t>(log, offset);
}

std::int64_t low64At(ByteView log, std::size_t offset) {
    return static_cast<std::int64_t>(loadLe64(log, offset));
}

void deriveEndurance(NvmeHealth& health) {
    // Unsigned, so that an absurd counter wraps around 64 bits.
    const std::uint64_t bytes = static_cast<std::uint64_t>(health.dataUnitsWritten) * kBytesPerDataUnit;
    health.gigabytesWritten = bytes / 1024 / 1024 / 1024;
    // One rated endurance for every drive: the log does not tell what its maker promised.
    health.enduranceFraction = static_cast<double>(health.gigabytesWritten) / 1024.0 / kRatedEnduranceTerabytes;
}

} // namespace

void markNvmeHealthUnread(DriveRecord& record) {
    record.nvme = {.criticalWarning = kNotReported,
                   .availableSpare = kNotReported,
                   .availableSpareThreshold = kNotReported,
                   .percentageUsed = kNotReported,
                   .dataUnitsRead = kNotReported,
                   .dataUnitsWritten = kNotReported,
                   .powerOnHours = kNotReported,
                   .errorLogEntries = kNotReported,
                   .gigabytesWritten = static_cast<std::uint64_t>(kNotReported),
                   .enduranceFraction = kNotReported};
    record.nvmeLog.clear();
}

void CopyHealthLog(DriveRecord& record, ByteView log) {
    NvmeHealth& health = record.nvme;
    health.criticalWarning = byteAt(log, kCriticalWarningAt);
    health.availableSpare = byteAt(log, kAvailableSpareAt);
    health.availableSpareThreshold = byteAt(log, kAvailableSpareThresholdAt);
    health.percentageUsed = byteAt(log, kPercentageUsedAt);
    health.dataUnitsRead = low64At(log, kDataUnitsReadAt);
    health.dataUnitsWritten = low64At(log, kDataUnitsWrittenAt);
    health.powerOnHours = low64At(log, kPowerOnHoursAt);
    health.errorLogEntries = low64At(log, kErrorLogEntriesAt);
    deriveEndurance(health);
    record.nvmeLog.assign(log.begin(), log.end());
}

void copyControllerIdentity(DriveRecord& record, ByteView identify) {
    record.printed = parseControllerIdentity(identify);
    record.serialNumber.assign(record.printed.serialNumber);
    record.model.assign(record.printed.model);
}

} // namespace torvane
