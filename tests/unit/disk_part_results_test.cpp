#include "admin/disk_part_results.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

std::string attributesReport(const std::string& readOnlyLine) {
    return "\r\nMicrosoft DiskPart version 10.0.19041.964\r\n\r\nDisk 1 is now the selected disk.\r\n\r\n" +
           readOnlyLine + "\r\nRead-only  : Yes\r\nBoot Disk  : No\r\n";
}

TEST(DiskPartAttributes, StateYesIsReadOnly) {
    EXPECT_FALSE(reportsWritableDisk(attributesReport("Current Read-only State : Yes").c_str()));
}

TEST(DiskPartAttributes, StateNoIsWritable) {
    EXPECT_TRUE(reportsWritableDisk(attributesReport("Current Read-only State : No").c_str()));
}

TEST(DiskPartAttributes, OnlyYesIsReadOnlyForSure) {
    EXPECT_TRUE(reportsReadOnlyDisk(attributesReport("Current Read-only State : Yes").c_str()));
    EXPECT_FALSE(reportsReadOnlyDisk(attributesReport("Current Read-only State : No").c_str()));
    EXPECT_FALSE(reportsReadOnlyDisk(attributesReport("Current Read-only State : Yess").c_str()));
    EXPECT_FALSE(reportsReadOnlyDisk("There is no disk selected.\r\n"));
    EXPECT_FALSE(reportsReadOnlyDisk(""));
}

TEST(DiskPartAttributes, TheFirstReadOnlyLineDecides) {
    EXPECT_FALSE(reportsWritableDisk("Current Read-only State : Yes\r\nCurrent Read-only State : No\r\n"));
}

TEST(DiskPartAttributes, TheWordMustBeExactlyNo) {
    EXPECT_FALSE(reportsWritableDisk(attributesReport("Current Read-only State : None").c_str()));
    EXPECT_FALSE(reportsWritableDisk(attributesReport("Current Read-only State : N").c_str()));
    EXPECT_FALSE(reportsWritableDisk(attributesReport("Current Read-only State : no").c_str()));
    EXPECT_FALSE(reportsWritableDisk(attributesReport("Current Read-only State : Yes No").c_str()));
}

TEST(DiskPartAttributes, ReportWithoutReadOnlyIsNotWritable) {
    EXPECT_FALSE(reportsWritableDisk("There is no disk selected.\r\n"));
    EXPECT_FALSE(reportsWritableDisk(""));
}

TEST(DiskPartAttributes, LineWithTooFewWordsIsNotWritable) {
    EXPECT_FALSE(reportsWritableDisk("Current Read-only State :\r\n"));
}

std::string automountReport(const std::string& line) {
    return "\r\nMicrosoft DiskPart version 10.0.19041.964\r\n\r\n" + line + "\r\n";
}

TEST(DiskPartAutomount, DisabledWithItsFullStop) {
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes disabled.").c_str()), 1000);
}

TEST(DiskPartAutomount, EnabledWithItsFullStop) {
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes enabled.").c_str()), 1001);
}

TEST(DiskPartAutomount, AnyOtherWordIsNeither) {
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes unknown.").c_str()), 1002);
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes Enabled.").c_str()), 1002);
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes disable.").c_str()), 1002);
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting of new volumes ").c_str()), 1002);
}

TEST(DiskPartAutomount, ALineWithTooFewWordsIsNeither) {
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting enabled.").c_str()), 1002);
    EXPECT_EQ(mountStatusInReport(automountReport("Automatic mounting disabled.").c_str()), 1002);
}

TEST(DiskPartAutomount, ReportWithoutTheLineIsNeither) {
    EXPECT_EQ(mountStatusInReport(automountReport("The arguments specified are not valid.").c_str()), 1002);
    EXPECT_EQ(mountStatusInReport(""), 1002);
}

std::string scrubReport(const std::string& status) {
    return "\r\nAutomatic mounting of new volumes unknown.\r\n\r\n"
           "DiskPart successfully scrubbed the mount point settings in the system.\r\n\r\n" +
           status + "\r\n";
}

TEST(DiskPartScrub, TheLineTwoBelowTheSuccessDecides) {
    EXPECT_EQ(mountStatusAfterScrub(scrubReport("Automatic mounting of new volumes disabled.").c_str()), 1000);
    EXPECT_EQ(mountStatusAfterScrub(scrubReport("Automatic mounting of new volumes enabled.").c_str()), 1001);
    EXPECT_EQ(mountStatusAfterScrub(scrubReport("Automatic mounting of new volumes paused.").c_str()), 1002);
}

TEST(DiskPartScrub, WithoutTheSuccessTheStatusIsUndetermined) {
    EXPECT_EQ(mountStatusAfterScrub("Automatic mounting of new volumes disabled.\r\n"), 1002);
    EXPECT_EQ(mountStatusAfterScrub(""), 1002);
}

TEST(DiskPartScrub, WithoutTheLineBelowTheStatusIsUndetermined) {
    EXPECT_EQ(mountStatusAfterScrub("DiskPart successfully scrubbed the mount point settings.\r\n"), 1002);
    EXPECT_EQ(mountStatusAfterScrub("DiskPart successfully scrubbed the mount point settings.\r\n\r\n"), 1002);
}

TEST(DiskPartClean, SucceededWhereTheReportSaysSo) {
    EXPECT_EQ(CleanReport::kSucceeded, cleanReport("\r\nDisk 2 is now the selected disk.\r\n\r\n"
                                                   "DiskPart succeeded in cleaning the disk.\r\n"));
    EXPECT_EQ(CleanReport::kRefused, cleanReport("\r\nDisk 2 is now the selected disk.\r\n\r\n"
                                                 "Virtual Disk Service error:\r\nThe media is write protected.\r\n"));
    EXPECT_EQ(cleanReport(""), CleanReport::kRefused);
    EXPECT_EQ(cleanReport("\r\nDatentraeger 2 ist jetzt der derzeit ausgewaehlte Datentraeger.\r\n"),
              CleanReport::kOtherLanguage);
}

constexpr PartitionTable kTwoPartitions{.style = PartitionStyle::kMbr, .mbrSignature = 7, .partitions = 2};
constexpr PartitionTable kEmptied{.style = PartitionStyle::kMbr, .mbrSignature = 7, .partitions = 0};
constexpr PartitionTable kRaw{};

TEST(DiskPartClean, WithoutATableTheReportDecides) {
    for (const auto& before : {std::optional<PartitionTable>(), std::optional(kTwoPartitions)}) {
        EXPECT_TRUE(wasCleaned(before, std::nullopt, CleanReport::kSucceeded));
        EXPECT_FALSE(wasCleaned(before, std::nullopt, CleanReport::kRefused));
        EXPECT_FALSE(wasCleaned(before, std::nullopt, CleanReport::kOtherLanguage));
    }
}

TEST(DiskPartClean, PartitionsThatAreLeftBelieTheReport) {
    EXPECT_FALSE(wasCleaned(kTwoPartitions, kTwoPartitions, CleanReport::kSucceeded));
    EXPECT_FALSE(wasCleaned(kRaw, kTwoPartitions, CleanReport::kSucceeded));
    EXPECT_FALSE(wasCleaned(kTwoPartitions, kTwoPartitions, CleanReport::kOtherLanguage));
}

TEST(DiskPartClean, ATableThatHasGoneIsACleanWhateverTheReportSays) {
    for (const CleanReport report : {CleanReport::kSucceeded, CleanReport::kRefused, CleanReport::kOtherLanguage}) {
        EXPECT_TRUE(wasCleaned(kTwoPartitions, kRaw, report));
        EXPECT_TRUE(wasCleaned(kTwoPartitions, kEmptied, report));
        EXPECT_TRUE(wasCleaned(kEmptied, kRaw, report));
    }
}

TEST(DiskPartClean, ADiskThatHeldNothingBeforeIsCleanUnlessTheReportSaysInEnglishThatItIsNot) {
    for (const auto& before : {std::optional<PartitionTable>(), std::optional(kRaw)}) {
        EXPECT_TRUE(wasCleaned(before, kRaw, CleanReport::kSucceeded));
        EXPECT_TRUE(wasCleaned(before, kRaw, CleanReport::kOtherLanguage));
        EXPECT_FALSE(wasCleaned(before, kRaw, CleanReport::kRefused));
    }
}

TEST(DiskPartClean, ARunThatDidNotComeToItsEndCleanedNothing) {
    EXPECT_FALSE(wasCleaned(kTwoPartitions, kRaw, CleanReport::kNotRun));
    EXPECT_FALSE(wasCleaned(std::nullopt, std::nullopt, CleanReport::kNotRun));
}

} // namespace
} // namespace torvane
