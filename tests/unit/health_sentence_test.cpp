#include "health/health_sentence.h"

#include "health/nvme_verdict.h"
#include "health/own_verdict.h"
#include "tests/unit/health_test_drives.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

constexpr const char* kFailingByItself = "The drive itself says that it is FAILING: copy it at once, then replace it.";
constexpr const char* kNoCounters = "The drive reports none of the counters that tell its condition.";
constexpr const char* kFailed =
    "=== START ===\r\nSMART overall-health self-assessment test result: FAILED!\r\nmore\r\n";
constexpr const char* kPassed = "SMART overall-health self-assessment test result: PASSED\r\n";
constexpr const char* kNoSmart = "SMART support is:     Unavailable - device lacks SMART capability.\r\n";

class HealthSentence : public ::testing::Test {
  protected:
    [[nodiscard]] std::string sentence() const { return healthSentence(drive_, messages_); }

    DriveRecord drive_ = soundDrive();
    MessageTable messages_ = fourMessages();
};

TEST_F(HealthSentence, OfAHardDiskIsTheAdviceOfItsLevel) {
    EXPECT_EQ(sentence(), "fine");
    drive_.disk[Counter::kPendingSectors] = 7;
    EXPECT_EQ(sentence(), "wearing out");
    messages_.clear();
    EXPECT_EQ(sentence(), "");
}

TEST_F(HealthSentence, OfAHardDiskThatSaysItselfThatItFailsStandsBesideTheAdvice) {
    EXPECT_EQ(failureBesideCounters(drive_), "");
    drive_.smartText = kFailed;
    EXPECT_EQ(sentence(), "fine");
    EXPECT_EQ(failureBesideCounters(drive_), kFailingByItself);
    drive_.disk[Counter::kReallocatedSectors] = 50;
    EXPECT_EQ(sentence(), "failing");
    EXPECT_EQ(failureBesideCounters(drive_), "") << "the advice says no less";
    drive_ = driveWithoutValues();
    drive_.smartText = kFailed;
    EXPECT_EQ(sentence(), kFailingByItself) << "there is no advice";
    EXPECT_EQ(failureBesideCounters(drive_), "");
    drive_.smartLoaded = 0;
    EXPECT_EQ(failureBesideCounters(drive_), "");
}

TEST_F(HealthSentence, OfASolidStateDriveThatSaysItselfThatItFailsSaysSo) {
    drive_.smartText = kFailed;
    drive_.smartType = kSmartTypeSsd;
    EXPECT_EQ(sentence(), kFailingByItself);
    drive_.ssd[Counter::kReallocatedSectors] = 50;
    EXPECT_EQ(sentence(), "failing");
    drive_.smartText = kPassed;
    drive_.ssd.fill(0);
    EXPECT_EQ(sentence(), "fine");
}

TEST_F(HealthSentence, OfASolidStateDriveGoesByItsErrorsItsLifeAndItsAge) {
    drive_.smartType = kSmartTypeSsd;
    EXPECT_EQ(sentence(), "fine");
    drive_.ssd[Counter::kPowerOnHours] = 30'000;
    EXPECT_EQ(sentence(), "By its age: early wear");
    drive_.ssd[Counter::kReportedUncorrectable] = 1;
    EXPECT_EQ(sentence(), "early wear") << "the age says no more";
    drive_.smartText = "0x07  0x008  1             101  N--  Percentage Used Endurance Indicator\r\n";
    EXPECT_EQ(sentence(), "wearing out");
    messages_.clear();
    drive_.ssd[Counter::kPowerOnHours] = 50'000;
    EXPECT_EQ(sentence(), "");
}

TEST_F(HealthSentence, OfASolidStateDriveGoesByEveryCounterThatThePanelTells) {
    drive_ = driveWithoutValues(kSmartTypeSsd);
    drive_.ssd[Counter::kPowerOnHours] = 100;
    drive_.disk[Counter::kReportedUncorrectable] = 380;
    EXPECT_EQ(sentence(), "failing") << "its own set has no name for it";
    drive_.ssd[Counter::kReportedUncorrectable] = 0;
    EXPECT_EQ(sentence(), "fine") << "its own value is told";
}

TEST_F(HealthSentence, OfASolidStateDriveKnowsItsLifeByThePercentageUsedAlone) {
    drive_ = driveWithoutValues(kSmartTypeSsd);
    EXPECT_EQ(sentence(), kNoCounters);
    drive_.smartText = "0x07  0x008  1              81  ---  Percentage Used Endurance Indicator";
    EXPECT_EQ(sentence(), "early wear");
    drive_.smartText = "0x07  0x008  1              80  ---  Percentage Used Endurance Indicator";
    EXPECT_EQ(sentence(), "fine");
}

TEST_F(HealthSentence, OfAnEmptyPanelTellsTheReason) {
    drive_ = driveWithoutValues();
    EXPECT_EQ(sentence(), kNoCounters);
    drive_.smartLoaded = 0;
    EXPECT_EQ(sentence(), "This controller passes no SMART on. A disk that is connected directly tells its condition.");
    drive_.busCode = kBusCodeUsb;
    EXPECT_EQ(sentence(), "This bridge passes no SMART on. A disk that is connected directly tells its condition.");
    drive_.device.identifySerial = "SN-1";
    EXPECT_EQ(sentence(), "SMART could not be read. \"Drive Details...\" and the log may tell why.");
    drive_.smartType = kSmartTypeNone;
    EXPECT_EQ(sentence(), "SMART could not be read. \"Drive Details...\" and the log may tell why.");
    drive_.smartText = kNoSmart;
    EXPECT_EQ(sentence(), "The drive says that it keeps no SMART data.");
    drive_.smartType = kSmartTypeStandard;
    drive_.smartLoaded = 1;
    EXPECT_EQ(sentence(), "The drive says that it keeps no SMART data.");
    drive_.disk[Counter::kReallocatedSectors] = 0;
    EXPECT_EQ(sentence(), "fine") << "there are counters all the same";
    drive_.disk[Counter::kReallocatedSectors] = kNotReported;
    drive_.smartType = kSmartTypeSsd;
    EXPECT_EQ(sentence(), "The drive says that it keeps no SMART data.");
    drive_.smartType = kSmartTypeUnknown;
    EXPECT_EQ(sentence(), "This interface reports no monitoring data.");
}

TEST_F(HealthSentence, OfADriveWithoutReportNamesTheToolThatIsMissing) {
    constexpr const char* kMissing = "SMART could not be read: smartctl.exe is missing.";
    drive_.smartLoaded = 0;
    EXPECT_EQ(healthSentence(drive_, messages_, true), kMissing);
    drive_.smartType = kSmartTypeNone;
    drive_.busCode = kBusCodeUsb;
    EXPECT_EQ(healthSentence(drive_, messages_, true), kMissing) << "whatever the bridge would have passed on";
}

TEST_F(HealthSentence, OfAnInterfaceWithoutMonitoringDataGoesByTheToolsReportWhereThereIsOne) {
    drive_.smartType = kSmartTypeUnknown;
    drive_.disk[Counter::kReallocatedSectors] = 1;
    EXPECT_EQ(sentence(), "From its report: wearing out");
    drive_.smartLoaded = 0;
    EXPECT_EQ(sentence(), "This interface reports no monitoring data.");
}

TEST_F(HealthSentence, OfAnNvmeDriveGoesByItsLog) {
    drive_.smartType = kSmartTypeNvme;
    drive_.nvme.availableSpare = 100;
    drive_.nvme.availableSpareThreshold = 10;
    EXPECT_EQ(sentence(), "fine");
    drive_.nvme.errorLogEntries = 2;
    EXPECT_EQ(sentence(), "It has lost data before: wearing out");
    drive_.nvme.availableSpare = 9;
    EXPECT_EQ(sentence(), "failing");
    messages_.clear();
    drive_.nvme.availableSpare = 90;
    EXPECT_EQ(sentence(), "");
    drive_ = driveWithoutValues(kSmartTypeNvme);
    EXPECT_EQ(sentence(), "The drive's health log could not be read.");
}

TEST(NvmeVerdict, GoesByTheWorstOfItsNumbers) {
    NvmeHealth health{.availableSpare = 100, .availableSpareThreshold = 10};
    EXPECT_EQ(nvmeLevel(health), 0U);
    health.availableSpare = 10;
    EXPECT_EQ(nvmeLevel(health), 2U) << "at its threshold";
    health.availableSpare = 9;
    EXPECT_EQ(nvmeLevel(health), 3U);
    health.availableSpareThreshold = kNotReported;
    EXPECT_EQ(nvmeLevel(health), 0U) << "no threshold to go by";
    health.percentageUsed = 80;
    EXPECT_EQ(nvmeLevel(health), 0U);
    health.percentageUsed = 81;
    EXPECT_EQ(nvmeLevel(health), 1U);
    health.percentageUsed = 101;
    EXPECT_EQ(nvmeLevel(health), 2U);
}

TEST(NvmeVerdict, KnowsTheWarningsAndTakesUnknownOnesSeriously) {
    struct Row {
        std::int32_t warning;
        std::uint32_t level;
    };
    for (const Row& row : {Row{0, 0}, Row{1, 3}, Row{2, 1}, Row{4, 3}, Row{8, 3}, Row{16, 2}, Row{32, 2}, Row{128, 2},
                           Row{18, 2}, Row{255, 3}, Row{kNotReported, 0}}) {
        const NvmeHealth health{.criticalWarning = row.warning, .availableSpare = 100};
        EXPECT_EQ(nvmeLevel(health), row.level) << row.warning;
    }
}

TEST(NvmeVerdict, TellsItsNumbersAndLeavesOutWhatIsNotKnown) {
    NvmeHealth health{.availableSpare = 100, .availableSpareThreshold = 10, .percentageUsed = 7, .powerOnHours = 5127};
    EXPECT_EQ(nvmeLifeText(health), "Life used 7 %, spare 100 % (limit 10 %), 5,127 h, 0 media errors");
    health.errorLogEntries = 1;
    health.availableSpareThreshold = kNotReported;
    EXPECT_EQ(nvmeLifeText(health), "Life used 7 %, spare 100 %, 5,127 h, 1 media error");
    health.percentageUsed = health.availableSpare = kNotReported;
    health.powerOnHours = health.errorLogEntries = kNotReported;
    EXPECT_EQ(nvmeLifeText(health), "");
}

TEST(OwnVerdict, IsReadFromEitherKindOfReport) {
    EXPECT_TRUE(saysThatItFails(kFailed));
    EXPECT_FALSE(saysThatItFails(kPassed));
    EXPECT_FALSE(saysThatItFails(""));
    EXPECT_TRUE(saysThatItFails("SMART Health Status: FAILURE PREDICTION THRESHOLD EXCEEDED [asc=5d, ascq=0]"));
    EXPECT_FALSE(saysThatItFails("SMART Health Status: OK\nElements in grown defect list: 0 FAILED\n"));
    EXPECT_TRUE(hasNoSmart(kNoSmart));
    EXPECT_FALSE(hasNoSmart("SMART support is:     Available - device has SMART capability.\n"));
}

TEST(OwnVerdict, LifeUsedIsTheFourthWordOfItsLine) {
    EXPECT_EQ(lifeUsed("a\n0x07  0x008  1               3  ---  Percentage Used Endurance Indicator\n"), 3U);
    EXPECT_EQ(lifeUsed("  7  0x008  1           12~ Percentage Used Endurance Indicator"), 12U);
    EXPECT_EQ(lifeUsed("0x07  0x008  1               -  ---  Percentage Used Endurance Indicator\n"), std::nullopt);
    EXPECT_EQ(lifeUsed("0x07  0x008  1             256  ---  Percentage Used Endurance Indicator\n"), std::nullopt);
    EXPECT_EQ(lifeUsed("Percentage Used Endurance Indicator"), std::nullopt);
    EXPECT_EQ(lifeUsed(""), std::nullopt);
}

} // namespace
} // namespace torvane
