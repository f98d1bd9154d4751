#include "health/grading.h"

#include "tests/unit/health_test_drives.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace torvane {
namespace {

constexpr std::array kErrorCounters{Counter::kReallocationEvents, Counter::kPendingSectors,
                                    Counter::kOfflineUncorrectable, Counter::kReportedUncorrectable};
constexpr std::array kAllCounters{Counter::kPowerOnHours, Counter::kReallocatedSectors,
                                  kErrorCounters[0],      kErrorCounters[1],
                                  kErrorCounters[2],      kErrorCounters[3]};

std::string nameOf(Counter counter) {
    return "counter " + std::to_string(static_cast<int>(counter));
}

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

std::uint32_t levelOf(const DriveRecord& drive) {
    const auto level = healthLevel(drive);
    EXPECT_TRUE(level);
    return level.value_or(99);
}

/// The level of a drive that is sound but for one counter.
std::uint32_t levelWith(Counter counter, std::int32_t value) {
    DriveRecord drive = soundDrive();
    drive.disk[counter] = value;
    return levelOf(drive);
}

struct Step {
    std::int32_t value;
    std::uint32_t level;
};

TEST(HealthLevel, RisesWithTheHours) {
    for (const Step& step : {Step{0, 0}, Step{1, 0}, Step{26279, 0}, Step{26280, 1}, Step{26281, 1}, Step{43799, 1},
                             Step{43800, 2}, Step{43801, 2}, Step{kLargest, 2}}) {
        EXPECT_EQ(levelWith(Counter::kPowerOnHours, step.value), step.level) << step.value;
    }
}

TEST(HealthLevel, RisesWithTheMovedSectors) {
    for (const Step& step :
         {Step{0, 0}, Step{1, 2}, Step{2, 2}, Step{49, 2}, Step{50, 3}, Step{51, 3}, Step{kLargest, 3}}) {
        EXPECT_EQ(levelWith(Counter::kReallocatedSectors, step.value), step.level) << step.value;
    }
}

TEST(HealthLevel, RisesWithEachErrorCounter) {
    for (const Counter counter : kErrorCounters) {
        for (const Step& step : {Step{0, 0}, Step{1, 1}, Step{4, 1}, Step{5, 2}, Step{9, 2}, Step{10, 3}, Step{11, 3},
                                 Step{kLargest, 3}}) {
            EXPECT_EQ(levelWith(counter, step.value), step.level) << nameOf(counter) << " " << step.value;
        }
    }
}

TEST(HealthLevel, TakesTheLargestErrorNotTheirSum) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kReportedUncorrectable] = 3;
    drive.disk[Counter::kPendingSectors] = 7;
    EXPECT_EQ(levelOf(drive), 2U);
    for (const Counter counter : kErrorCounters) {
        drive.disk[counter] = 4;
    }
    EXPECT_EQ(levelOf(drive), 1U);
}

TEST(HealthLevel, IsTheWorstOfTheThree) {
    for (const std::int32_t hours : {0, 26280, 43800}) {
        for (const std::int32_t moved : {0, 1, 50}) {
            for (const std::int32_t errors : {0, 1, 5, 10}) {
                DriveRecord drive = soundDrive();
                drive.disk[Counter::kPowerOnHours] = hours;
                drive.disk[Counter::kReallocatedSectors] = moved;
                drive.disk[Counter::kPendingSectors] = errors;
                const std::uint32_t expected =
                    std::max({levelWith(Counter::kPowerOnHours, hours), levelWith(Counter::kReallocatedSectors, moved),
                              levelWith(Counter::kPendingSectors, errors)});
                EXPECT_EQ(levelOf(drive), expected) << hours << " " << moved << " " << errors;
            }
        }
    }
}

TEST(HealthLevel, IsNoneWithoutAnyCounter) {
    EXPECT_FALSE(healthLevel(driveWithoutValues()));
}

TEST(HealthLevel, NeedsOneCounterOnly) {
    for (const Counter counter : kAllCounters) {
        DriveRecord drive = driveWithoutValues();
        drive.disk[counter] = 0;
        EXPECT_EQ(levelOf(drive), 0U) << nameOf(counter);
    }
}

TEST(HealthLevel, IsNeverRaisedByACounterThatIsAbsent) {
    for (const Counter counter : kAllCounters) {
        EXPECT_EQ(levelWith(counter, kNotReported), 0U) << nameOf(counter);
        EXPECT_EQ(levelWith(counter, kSmallest), 0U) << nameOf(counter);
    }
    DriveRecord drive = driveWithoutValues();
    drive.disk[Counter::kPendingSectors] = 5;
    EXPECT_EQ(levelOf(drive), 2U);
}

TEST(GradeDrive, ReturnsTheMessageOfTheLevel) {
    const MessageTable messages = fourMessages();
    DriveRecord drive = soundDrive();
    EXPECT_EQ(GradeDrive(messages, drive), &messages[0]);
    drive.disk[Counter::kPowerOnHours] = 26280;
    EXPECT_EQ(GradeDrive(messages, drive), &messages[1]);
    drive.disk[Counter::kPendingSectors] = 7;
    EXPECT_EQ(GradeDrive(messages, drive), &messages[2]);
    drive.disk[Counter::kReallocatedSectors] = 50;
    EXPECT_EQ(GradeDrive(messages, drive), &messages[3]);
}

TEST(GradeDrive, SevenPendingSectorsAloneGiveTheMessageOfLevelTwo) {
    const MessageTable messages = fourMessages();
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPendingSectors] = 7;
    const MessageRecord* message = GradeDrive(messages, drive);
    ASSERT_EQ(message, &messages[2]);
    EXPECT_EQ(message->level, 2U);
    EXPECT_EQ(messageText(*message), "wearing out");
    EXPECT_EQ(decideLamp(&drive, messages).lampImage, "engine-check-yellow.png");
}

TEST(GradeDrive, ReturnsNothingWithoutCountersOrMessage) {
    EXPECT_EQ(GradeDrive(fourMessages(), driveWithoutValues()), nullptr);
    EXPECT_EQ(GradeDrive({}, soundDrive()), nullptr);
    const MessageTable onlyRed{messageFor(3, kLampRed, "failing")};
    EXPECT_EQ(GradeDrive(onlyRed, soundDrive()), nullptr);
}

TEST(LampImage, FollowsTheColourCode) {
    EXPECT_EQ(lampImage(1), "engine-check-blue.png");
    EXPECT_EQ(lampImage(2), "engine-check-yellow.png");
    EXPECT_EQ(lampImage(3), "engine-check-green.png");
    EXPECT_EQ(lampImage(4), "engine-check-red.png");
    for (const std::uint32_t other : {0U, 5U, 0x80000000U, kMessageTableEnd}) {
        EXPECT_EQ(lampImage(other), "") << other;
    }
}

TEST(Lamp, IsWhiteWithoutAnActiveDrive) {
    const LampVerdict verdict = decideLamp(nullptr, fourMessages());
    EXPECT_EQ(verdict.lampImage, "engine-check-white.png");
    EXPECT_FALSE(verdict.showsCounters);
}

TEST(Lamp, IsWhiteWithoutAReportWhateverTheCountersSay) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kReallocatedSectors] = 50;
    drive.smartLoaded = 0;
    const LampVerdict verdict = decideLamp(&drive, fourMessages());
    EXPECT_EQ(verdict.lampImage, "engine-check-white.png");
    EXPECT_FALSE(verdict.showsCounters);
}

TEST(Lamp, HasTheMessagesColour) {
    const MessageTable messages = fourMessages();
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kReallocatedSectors] = 50;
    const LampVerdict verdict = decideLamp(&drive, messages);
    EXPECT_EQ(verdict.lampImage, "engine-check-red.png");
    EXPECT_TRUE(verdict.showsCounters);
}

TEST(Lamp, IsAbsentWithoutAMessageButTheCountersStay) {
    const DriveRecord drive = soundDrive();
    const LampVerdict withoutMessages = decideLamp(&drive, {});
    EXPECT_EQ(withoutMessages.lampImage, "");
    EXPECT_TRUE(withoutMessages.showsCounters);

    const DriveRecord ungraded = driveWithoutValues();
    const LampVerdict withoutLevel = decideLamp(&ungraded, fourMessages());
    EXPECT_EQ(withoutLevel.lampImage, "");
}

TEST(Lamp, OfAnUnknownColourIsAbsent) {
    const MessageTable messages{messageFor(0, 9, "odd")};
    const DriveRecord drive = soundDrive();
    const LampVerdict verdict = decideLamp(&drive, messages);
    EXPECT_EQ(verdict.lampImage, "");
}

TEST(NvmeWarnings, FollowTheFiveLowBitsInEveryCombination) {
    for (std::int32_t warning = 0; warning < 32; ++warning) {
        DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
        drive.nvme.criticalWarning = warning;
        const auto failed = NvmeWarningBits(drive);
        ASSERT_TRUE(failed) << warning;
        std::int32_t rebuilt = 0;
        for (std::size_t bit = 0; bit < failed->size(); ++bit) {
            rebuilt |= (*failed)[bit] ? 1 << bit : 0;
        }
        EXPECT_EQ(rebuilt, warning);
    }
}

TEST(NvmeWarnings, IgnoreTheReservedBits) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    drive.nvme.criticalWarning = 0xE0;
    EXPECT_EQ(NvmeWarningBits(drive), NvmeWarnings{});
    drive.nvme.criticalWarning = 0xFF;
    EXPECT_EQ(NvmeWarningBits(drive), (NvmeWarnings{true, true, true, true, true}));
}

TEST(NvmeWarnings, AreNoneWhenTheLogWasNotRead) {
    EXPECT_FALSE(NvmeWarningBits(driveWithoutValues(kSmartTypeNvme)));
}

TEST(NvmeTexts, NameTheSpareAndItsThresholdOnlyOnFailure) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    drive.nvme.availableSpare = 7;
    drive.nvme.availableSpareThreshold = 10;
    EXPECT_EQ(nvmeResultText(drive, 0, true), "FAILED 007 010");
    EXPECT_EQ(nvmeResultText(drive, 0, false), "RESULTS");
    drive.nvme.availableSpare = 255;
    drive.nvme.availableSpareThreshold = 128;
    EXPECT_EQ(nvmeResultText(drive, 0, true), "FAILED 127 000");
}

TEST(NvmeTexts, OfTheOtherBitsNeverChange) {
    const DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    for (std::size_t bit = 1; bit < kNvmeWarningCount; ++bit) {
        EXPECT_EQ(nvmeResultText(drive, bit, true), "RESULT");
        EXPECT_EQ(nvmeResultText(drive, bit, false), "RESULT");
    }
}

TEST(EnduranceText, TellsGigabytesAndPercent) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    drive.nvme.dataUnitsWritten = 2000000;
    drive.nvme.gigabytesWritten = 953;
    drive.nvme.enduranceFraction = 953 / 1024.0 / 7000.0;
    EXPECT_EQ(enduranceText(drive), "Total Bytes Written 953 GB is 0.01 percent of threshold");
    drive.nvme.gigabytesWritten = 7168000;
    drive.nvme.enduranceFraction = 1.0;
    EXPECT_EQ(enduranceText(drive), "Total Bytes Written 7,168,000 GB is 100.00 percent of threshold");
}

TEST(EnduranceText, IsOneBlankWhenUnknown) {
    EXPECT_EQ(enduranceText(driveWithoutValues(kSmartTypeNvme)), " ");
}

TEST(ThousandsText, SetsACommaBetweenGroupsOfThree) {
    EXPECT_EQ(thousandsText(0), "0");
    EXPECT_EQ(thousandsText(999), "999");
    EXPECT_EQ(thousandsText(1000), "1,000");
    EXPECT_EQ(thousandsText(99999), "99,999");
    EXPECT_EQ(thousandsText(100000), "100,000");
    EXPECT_EQ(thousandsText(1000000), "1,000,000");
    EXPECT_EQ(thousandsText(std::numeric_limits<std::uint64_t>::max()), "18,446,744,073,709,551,615");
}

} // namespace
} // namespace torvane
