#include "copy/jobs/comparison_steps.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr ComparisonEnd kWhole = ComparisonEnd::kWhole;

TEST(Comparison, IsToldInWords) {
    EXPECT_EQ(comparisonInWords({.end = kWhole, .compared = 5}, 512), "verified");
    EXPECT_EQ(comparisonInWords({.end = kWhole, .compared = 4, .lost = 1}, 512),
              "verified, 1 unreadable block left out");
    EXPECT_EQ(comparisonInWords({.end = kWhole, .compared = 5, .differing = 1, .firstDifference = 4096}, 4096),
              "1 block differs, the first at sector 1");
    EXPECT_EQ(
        comparisonInWords({.end = kWhole, .differing = 3, .unreadable = 2, .lost = 2, .firstDifference = 5119}, 512),
        "3 blocks differ, the first at sector 9, 2 blocks could not be read again, 2 unreadable blocks left out");
    EXPECT_EQ(comparisonInWords({.end = ComparisonEnd::kStopped, .compared = 7}, 512),
              "verification stopped: 7 blocks were compared");
    EXPECT_EQ(comparisonInWords({}, 512), "verification failed");
}

TEST(Comparison, RefutesACopyUnlessEverythingWasFoundEqual) {
    EXPECT_FALSE(isRefuted(std::nullopt)) << "nobody has asked";
    EXPECT_FALSE(isRefuted(Comparison{.end = kWhole}));
    EXPECT_FALSE(isRefuted(Comparison{.end = kWhole, .compared = 1, .lost = 3})) << "the copy has told it";
    EXPECT_TRUE(isRefuted(Comparison{.end = kWhole, .lost = 3})) << "nothing was left to compare";
    EXPECT_TRUE(isRefuted(Comparison{.end = kWhole, .differing = 1}));
    EXPECT_TRUE(isRefuted(Comparison{.end = kWhole, .unreadable = 1}));
    EXPECT_TRUE(isRefuted(Comparison{.end = ComparisonEnd::kStopped}));
    EXPECT_TRUE(isRefuted(Comparison{}));
}

TEST(Comparison, StandsInTheStatusCell) {
    const JobLosses lost{.unreadableBlocks = 2};
    EXPECT_EQ(copyOutcomeText(RunEnd::kWhole, {}, std::nullopt), "COMPLETED");
    EXPECT_EQ(copyOutcomeText(RunEnd::kWhole, {}, Comparison{.end = kWhole}), "COMPLETED, verified");
    EXPECT_EQ(copyOutcomeText(RunEnd::kWhole, lost, Comparison{.end = kWhole, .compared = 1, .lost = 2}),
              "BAD 2 unreadable blocks, verified");
    EXPECT_EQ(copyOutcomeText(RunEnd::kWhole, lost, Comparison{.end = kWhole, .differing = 1, .lost = 2}),
              "BAD not verified, 2 unreadable blocks");
    EXPECT_EQ(copyOutcomeText(RunEnd::kRemainderSkipped, {}, Comparison{.end = ComparisonEnd::kStopped}),
              "BAD not completed, not verified");
}

} // namespace
} // namespace torvane
