#include "monitoring/report_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The planned reports as "line: drive".
std::vector<std::string> planned(const char* listing) {
    std::vector<std::string> texts;
    for (const PlannedReport& report : planReports(listing)) {
        texts.push_back(std::to_string(report.line) + ": " + std::to_string(report.driveNumber));
    }
    return texts;
}

TEST(ReportPlan, HasEveryDriveOfTheListingInItsOrder) {
    EXPECT_THAT(planned("/dev/sdc -d ata # x\r\n/dev/nvme0 -d nvme # x\r\n/dev/sda -d ata # x\r\n"),
                ElementsAre("0: 2", "2: 0"));
}

TEST(ReportPlan, HasTheCommandOfEveryReport) {
    const auto plan = planReports("/dev/sdb -d scsi # x\r\n");
    ASSERT_EQ(plan.size(), 1U);
    EXPECT_EQ(plan[0].commandLine, "smartctl.exe /dev/sdb -d sat -s on -x -T verypermissive -T verypermissive");
}

TEST(ReportPlan, LeavesADriveThatIsNamedAgainToItsTurn) {
    EXPECT_THAT(planned("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x\r\n/dev/sda -d scsi # x\r\n"),
                ElementsAre("0: 0", "1: 1"));
}

// Such a line means the drive of the line before it, by a text of its own.
TEST(ReportPlan, LeavesALineOfFewWordsToItsTurn) {
    EXPECT_THAT(planned("/dev/sda -d ata # x\r\n/dev/sdb\r\n/dev/sdc -d ata # x\r\n"), ElementsAre("0: 0", "2: 2"));
    EXPECT_THAT(planned("short\r\n"), IsEmpty());
}

TEST(ReportPlan, LeavesALineWithoutItsEndOut) {
    EXPECT_THAT(planned("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x"), ElementsAre("0: 0"));
}

} // namespace
} // namespace torvane
