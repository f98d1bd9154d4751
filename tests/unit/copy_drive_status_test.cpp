#include "copy/jobs/drive_status.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::uint64_t kMebibyte = 1048576;

TEST(LossesInWords, OfNothingSaySo) {
    EXPECT_FALSE(hasLost({}));
    EXPECT_EQ(lossesInWords({}), "Nothing was lost");
}

TEST(LossesInWords, CountEachKind) {
    const JobLosses losses{.unreadableBlocks = 2, .failedWrites = 40, .bytesNotCopied = 512 * kMebibyte};
    EXPECT_TRUE(hasLost(losses));
    EXPECT_EQ(lossesInWords(losses), "2 unreadable blocks, 40 failed writes, 512 MB of the source not copied");
    EXPECT_EQ(lossesInWords({.unreadableBlocks = 1, .failedWrites = 1}), "1 unreadable block, 1 failed write");
    EXPECT_EQ(lossesInWords({.notHashed = true}), "not hashed");
    EXPECT_EQ(lossesInWords({.failedWrites = 3, .mountedMeanwhile = true}),
              "3 failed writes, a volume was mounted meanwhile");
}

TEST(LossesInWords, SayBytesInTheLargestUnitThatFits) {
    const auto words = [](std::uint64_t bytes) { return lossesInWords({.bytesNotCopied = bytes}); };
    EXPECT_EQ(words(1), "1 byte of the source not copied");
    EXPECT_EQ(words(1023), "1023 bytes of the source not copied");
    EXPECT_EQ(words(1024), "1 KB of the source not copied");
    EXPECT_EQ(words(kMebibyte + kMebibyte / 2), "1.5 MB of the source not copied");
    EXPECT_EQ(words(3 * 1024 * kMebibyte), "3 GB of the source not copied");
    EXPECT_EQ(words(2 * kMebibyte * kMebibyte), "2 TB of the source not copied");
}

TEST(FaultsInWords, TellWhatCouldNotBeReadOrWrittenAlone) {
    EXPECT_FALSE(hasFaults({.bytesNotCopied = kMebibyte, .notHashed = true}));
    EXPECT_EQ(faultsInWords({.bytesNotCopied = kMebibyte, .notHashed = true}), "");
    EXPECT_TRUE(hasFaults({.unreadableBlocks = 1}));
    EXPECT_TRUE(hasFaults({.failedWrites = 1}));
    EXPECT_EQ(faultsInWords({.unreadableBlocks = 2, .failedWrites = 1, .bytesNotCopied = kMebibyte}),
              "2 unreadable blocks, 1 failed write");
}

TEST(DriveOutcomeText, OfACutCopyIsNotCompleted) {
    EXPECT_EQ(driveOutcomeText("", {}), "COMPLETED");
    EXPECT_EQ(driveOutcomeText("", {.bytesNotCopied = 512 * kMebibyte}), "BAD 512 MB of the source not copied");
    EXPECT_EQ(driveOutcomeText(kNotCompleted, {.bytesNotCopied = 512 * kMebibyte}), "BAD not completed");
}

} // namespace
} // namespace torvane
