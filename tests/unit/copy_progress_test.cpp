#include "copy/jobs/copy_progress.h"

#include "copy/jobs/track.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvane {
namespace {

std::string remaining(std::int64_t elapsedMilliseconds, std::int64_t done, std::int64_t total) {
    return EstimateRemainingTime({.startTick = 5000, .done = done, .total = total}, 5000 + elapsedMilliseconds);
}

TEST(EstimateRemainingTime, IsZeroUntilSomethingIsKnown) {
    EXPECT_EQ(remaining(0, 0, 100), "00:00:00");
    EXPECT_EQ(remaining(999, 5, 100), "00:00:00");
    EXPECT_EQ(remaining(60000, 0, 100), "00:00:00");
    EXPECT_EQ(remaining(0, 0, 0), "00:00:00");
    EXPECT_EQ(remaining(-5000, 5, 100), "00:00:00") << "a clock that was set back";
}

TEST(EstimateRemainingTime, ScalesTheTimeSoFar) {
    EXPECT_EQ(remaining(1000, 1, 2), "00:00:01");
    EXPECT_EQ(remaining(1999, 1, 2), "00:00:01") << "whole seconds only";
    EXPECT_EQ(remaining(10000, 1, 100), "00:16:30");
    EXPECT_EQ(remaining(60000, 50, 100), "00:01:00");
    EXPECT_EQ(remaining(7000, 3, 100), "00:03:46");
    EXPECT_EQ(remaining(60000, 100, 100), "00:00:00");
}

TEST(EstimateRemainingTime, HoursTakeAsManyDigitsAsTheyNeed) {
    EXPECT_EQ(remaining(3600000, 1, 101), "100:00:00");
    EXPECT_EQ(remaining(3661000, 1, 2), "01:01:01");
    EXPECT_EQ(remaining(1000, 1, std::int64_t{1} << 39), "152709948:18:07");
}

TEST(EstimateRemainingTime, StaysDefinedForAnything) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(remaining(kMost - 5000, 1, kMost), "277777777777:46:40");
    EXPECT_EQ(remaining(1000, 10, 1), "00:00:00");
}

TEST(PercentDone, IsRoundedDown) {
    EXPECT_EQ(percentDone(0, 3), 0);
    EXPECT_EQ(percentDone(1, 3), 33);
    EXPECT_EQ(percentDone(2, 3), 66);
    EXPECT_EQ(percentDone(3, 3), 100);
    // (29 / 100) * 100 is a little less than 29 in floating point.
    EXPECT_EQ(percentDone(29, 100), 28);
}

TEST(PercentDone, AJobWithoutAFullBlockIsDone) {
    EXPECT_EQ(percentDone(0, 0), 100);
    EXPECT_EQ(carPosition(0, 0, CopyDirection::kForward), 760);
}

TEST(CarPosition, RunsFromTenToSevenHundredAndSixty) {
    EXPECT_EQ(carPosition(0, 8, CopyDirection::kForward), 10);
    EXPECT_EQ(carPosition(1, 8, CopyDirection::kForward), 103);
    EXPECT_EQ(carPosition(4, 8, CopyDirection::kForward), 385);
    EXPECT_EQ(carPosition(8, 8, CopyDirection::kForward), 760);
}

TEST(CarPosition, RunsBackForAReverseClone) {
    EXPECT_EQ(carPosition(0, 8, CopyDirection::kReverse), 760);
    EXPECT_EQ(carPosition(1, 8, CopyDirection::kReverse), 667);
    EXPECT_EQ(carPosition(8, 8, CopyDirection::kReverse), 10);
}

TEST(StatusLine, EndsInThePercentSignAndTheNumber) {
    EXPECT_EQ(statusLine(" Status", "00:01:02", 37), " Status: 00:01:02 -- %37");
    EXPECT_EQ(statusLine(" Image Status", "00:00:00", 0), " Image Status: 00:00:00 -- %0");
}

} // namespace
} // namespace torvane
