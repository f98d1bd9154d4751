#include "records/drive_record.h"
#include "surface/read_test_texts.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(ReadTestTexts, CaptionWordsOfTheThreeKinds) {
    EXPECT_STREQ(readTestCaptionWord(4000), "CRITICAL");
    EXPECT_STREQ(readTestCaptionWord(4001), "SHORT");
    EXPECT_STREQ(readTestCaptionWord(4002), "NIST");
    for (const std::int32_t kind : {0, 3999, 4003, -1}) {
        EXPECT_EQ(readTestCaptionWord(kind), nullptr) << kind;
    }
}

TEST(ReadTestTexts, BoxWithoutAnActiveDrive) {
    EXPECT_EQ(noDriveForReadTestText(kCriticalReadTest),
              "Load Drives, and click on drive to make ACTIVE for Critical Read Test");
    EXPECT_EQ(noDriveForReadTestText(kShortReadTest),
              "Load Drives, and click on drive to make ACTIVE for Short Read Test");
    EXPECT_EQ(noDriveForReadTestText(kNistReadTest),
              "Load Drives, and click on drive to make ACTIVE for NIST Read Test");
}

TEST(ReadTestTexts, AnotherKindHasNoName) {
    EXPECT_STREQ(readTestName(kNistReadTest), "NIST Read Test");
    EXPECT_STREQ(readTestName(static_cast<ReadTestKind>(4003)), "");
}

TEST(ReadTestTexts, OutcomeLineSaysPassedUnlessThereWereReadErrors) {
    EXPECT_EQ(readTestOutcomeLine("NIST Read Test", 0), "NIST Read Test -- PASSED");
    EXPECT_EQ(readTestOutcomeLine("NIST Read Test", 1), "NIST Read Test -- FAILED Found Read Errors");
}

TEST(ReadTestTexts, DriveStatusBeginsWithTheWordThatColoursIt) {
    EXPECT_EQ(readTestDriveStatus("Short Read Test", {ReadTestResult::kPassed, {}}),
              "COMPLETED Short Read Test PASSED");
    EXPECT_EQ(readTestDriveStatus("NIST Read Test", {ReadTestResult::kTerminated, {}}),
              "BAD NIST Read Test TERMINATED");
    EXPECT_EQ(readTestDriveStatus("NIST Read Test", {ReadTestResult::kFailed, {}}), "BAD NIST Read Test FAILED");
    EXPECT_EQ(readTestDriveStatus("NIST Read Test", {ReadTestResult::kFailed, 39062500000}),
              "BAD NIST Read Test FAILED at sector 39062500000");
}

} // namespace
} // namespace torvane
