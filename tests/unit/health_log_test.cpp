#include "monitoring/health_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

using HealthLog = std::array<std::uint8_t, kNvmeHealthLogSize>;

TEST(HealthLogCopy, TakesEveryFieldFromItsOffset) {
    HealthLog log{};
    log[0] = 0x1D;
    log[1] = 0x2A; // temperature, not taken
    log[3] = 97;
    log[4] = 10;
    log[5] = 130; // may exceed 100
    storeLe<std::uint64_t>(log, 32, 0x0102030405060708);
    storeLe<std::uint64_t>(log, 48, 2'000'000);
    storeLe<std::uint64_t>(log, 128, 45'000);
    storeLe<std::uint64_t>(log, 160, 17);
    DriveRecord record;
    record.smartType = kSmartTypeUnknown;
    CopyHealthLog(record, log);
    EXPECT_EQ(record.nvme.criticalWarning, 0x1D);
    EXPECT_EQ(record.nvme.availableSpare, 97);
    EXPECT_EQ(record.nvme.availableSpareThreshold, 10);
    EXPECT_EQ(record.nvme.percentageUsed, 130);
    EXPECT_EQ(record.nvme.dataUnitsRead, 0x0102030405060708);
    EXPECT_EQ(record.nvme.dataUnitsWritten, 2'000'000);
    EXPECT_EQ(record.nvme.powerOnHours, 45'000);
    EXPECT_EQ(record.nvme.errorLogEntries, 17);
    EXPECT_EQ(record.smartType, kSmartTypeUnknown) << "is the caller's to set";
    EXPECT_THAT(record.nvmeLog, ::testing::ElementsAreArray(log)) << "is kept for whoever wants to know more";
    markNvmeHealthUnread(record);
    EXPECT_TRUE(record.nvmeLog.empty());
}

TEST(HealthLogCopy, EveryByteOfTheLogEndsInItsOwnFieldOrNone) {
    for (std::size_t i = 0; i < kNvmeHealthLogSize; ++i) {
        HealthLog log{};
        log[i] = 1;
        DriveRecord record;
        CopyHealthLog(record, log);
        const NvmeHealth& health = record.nvme;
        const auto place = [i](std::size_t offset) {
            return i >= offset && i < offset + 8 ? std::int64_t{1} << (8 * (i - offset)) : 0;
        };
        EXPECT_EQ(health.criticalWarning, i == 0 ? 1 : 0) << i;
        EXPECT_EQ(health.availableSpare, i == 3 ? 1 : 0) << i;
        EXPECT_EQ(health.availableSpareThreshold, i == 4 ? 1 : 0) << i;
        EXPECT_EQ(health.percentageUsed, i == 5 ? 1 : 0) << i;
        EXPECT_EQ(health.dataUnitsRead, place(32)) << i;
        EXPECT_EQ(health.dataUnitsWritten, place(48)) << i;
        EXPECT_EQ(health.powerOnHours, place(128)) << i;
        EXPECT_EQ(health.errorLogEntries, place(160)) << i;
    }
}

TEST(HealthLogCopy, DerivesTheEndurance) {
    HealthLog log{};
    storeLe<std::uint64_t>(log, 48, 2'000'000);
    DriveRecord record;
    CopyHealthLog(record, log);
    EXPECT_EQ(record.nvme.gigabytesWritten, 953U);
    EXPECT_DOUBLE_EQ(record.nvme.enduranceFraction, 953.0 / 1024.0 / 7000.0);
    EXPECT_NEAR(record.nvme.enduranceFraction, 0.000133, 0.0000005);
}

TEST(HealthLogCopy, TruncatesGigabytes) {
    const auto gigabytes = [](std::uint64_t dataUnits) {
        HealthLog log{};
        storeLe<std::uint64_t>(log, 48, dataUnits);
        DriveRecord record;
        CopyHealthLog(record, log);
        return record.nvme.gigabytesWritten;
    };
    EXPECT_EQ(gigabytes(0), 0U);
    EXPECT_EQ(gigabytes(2097), 0U); // 1,073,664,000 bytes, just below 2^30
    EXPECT_EQ(gigabytes(2098), 1U);
}

TEST(HealthLogCopy, AnAllZeroLogIsAllZero) {
    DriveRecord record;
    markNvmeHealthUnread(record);
    CopyHealthLog(record, HealthLog{});
    EXPECT_EQ(record.nvme.criticalWarning, 0);
    EXPECT_EQ(record.nvme.availableSpare, 0);
    EXPECT_EQ(record.nvme.dataUnitsWritten, 0);
    EXPECT_EQ(record.nvme.gigabytesWritten, 0U);
    EXPECT_EQ(record.nvme.enduranceFraction, 0.0);
}

TEST(HealthLogCopy, AnAllOnesLogKeepsLow64BitsAndWrapsAround) {
    HealthLog log{};
    log.fill(0xFF);
    DriveRecord record;
    CopyHealthLog(record, log);
    EXPECT_EQ(record.nvme.criticalWarning, 255);
    EXPECT_EQ(record.nvme.availableSpare, 255);
    EXPECT_EQ(record.nvme.availableSpareThreshold, 255);
    EXPECT_EQ(record.nvme.percentageUsed, 255);
    EXPECT_EQ(record.nvme.dataUnitsRead, -1);
    EXPECT_EQ(record.nvme.dataUnitsWritten, -1) << "the same as not read";
    EXPECT_EQ(record.nvme.powerOnHours, -1);
    EXPECT_EQ(record.nvme.gigabytesWritten, 17'179'869'183U) << "of 2^64 - 512000 bytes";
}

TEST(HealthLogCopy, OfACounterBeyond64BitsTheLowHalfIsKept) {
    HealthLog log{};
    storeLe<std::uint64_t>(log, 48, 2'000'000);
    storeLe<std::uint64_t>(log, 56, 5); // the counter's upper half
    DriveRecord record;
    CopyHealthLog(record, log);
    EXPECT_EQ(record.nvme.dataUnitsWritten, 2'000'000);
    EXPECT_EQ(record.nvme.gigabytesWritten, 953U);
}

TEST(HealthLogCopy, BytesMissingFromAShortLogCountAsZero) {
    const std::vector<std::uint8_t> log(50, 0x01);
    DriveRecord record;
    CopyHealthLog(record, log);
    EXPECT_EQ(record.nvme.criticalWarning, 1);
    EXPECT_EQ(record.nvme.dataUnitsWritten, 0x0101);
    EXPECT_EQ(record.nvme.powerOnHours, 0);
    CopyHealthLog(record, {});
    EXPECT_EQ(record.nvme.criticalWarning, 0);
}

TEST(HealthLogCopy, UnreadIsMinusOneInEveryField) {
    DriveRecord record;
    markNvmeHealthUnread(record);
    EXPECT_EQ(record.nvme.criticalWarning, -1);
    EXPECT_EQ(record.nvme.availableSpare, -1);
    EXPECT_EQ(record.nvme.availableSpareThreshold, -1);
    EXPECT_EQ(record.nvme.percentageUsed, -1);
    EXPECT_EQ(record.nvme.dataUnitsRead, -1);
    EXPECT_EQ(record.nvme.dataUnitsWritten, -1);
    EXPECT_EQ(record.nvme.powerOnHours, -1);
    EXPECT_EQ(record.nvme.errorLogEntries, -1);
    EXPECT_EQ(record.nvme.gigabytesWritten, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(record.nvme.enduranceFraction, -1.0);
}

// --- Identify Controller

std::vector<std::uint8_t> identifyWith(std::string_view serial, std::string_view model) {
    std::vector<std::uint8_t> identify(kNvmeIdentifySize, 0xEE);
    std::fill(identify.begin() + 4, identify.begin() + 64, std::uint8_t{' '});
    std::copy(serial.begin(), serial.end(), identify.begin() + 4);
    std::copy(model.begin(), model.end(), identify.begin() + 24);
    return identify;
}

TEST(ControllerIdentity, IsTrimmedOfItsPadding) {
    DriveRecord record;
    record.model.assign("what the probe found");
    copyControllerIdentity(record, identifyWith("  SN 0001", "Torvane NVMe  512"));
    EXPECT_EQ(record.serialNumber.view(), "SN 0001");
    EXPECT_EQ(record.model.view(), "Torvane NVMe  512");
}

TEST(ControllerIdentity, FullFieldsAreCutAtTheirWidth) {
    DriveRecord record;
    copyControllerIdentity(record, identifyWith("12345678901234567890", "1234567890123456789012345678901234567890"));
    EXPECT_EQ(record.serialNumber.view(), "12345678901234567890");
    EXPECT_EQ(record.model.view(), "1234567890123456789012345678901234567890");
}

TEST(ControllerIdentity, EndsAtANulAndAtTheDatasEnd) {
    DriveRecord record;
    copyControllerIdentity(record, identifyWith(std::string_view("AB\0CD", 5), std::string_view("\0M", 2)));
    EXPECT_EQ(record.serialNumber.view(), "AB");
    EXPECT_EQ(record.model.view(), "");
    std::vector<std::uint8_t> shortData = identifyWith("SERIAL", "MODEL");
    shortData.resize(26);
    copyControllerIdentity(record, shortData);
    EXPECT_EQ(record.serialNumber.view(), "SERIAL");
    EXPECT_EQ(record.model.view(), "MO");
    copyControllerIdentity(record, {});
    EXPECT_EQ(record.serialNumber.view(), "");
}

} // namespace
} // namespace torvane
