#include "copy/engine/run_meter.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::int64_t kStart = 777000; // milliseconds

TEST(RunMeter, KnowsNothingBeforeTheFirstMoment) {
    const RunMeter meter(kStart);
    EXPECT_EQ(meter.bytesPerSecond(kStart), 0U);
    EXPECT_EQ(meter.bytesPerSecond(kStart - 5), 0U);
    EXPECT_EQ(meter.elapsedSeconds(kStart - 5), 0);
}

TEST(RunMeter, TellsWholeSecondsSinceItsStart) {
    const RunMeter meter(kStart);
    EXPECT_EQ(meter.elapsedSeconds(kStart + 999), 0);
    EXPECT_EQ(meter.elapsedSeconds(kStart + 362999), 362);
}

TEST(RunMeter, TellsTheRateSinceItsStartDuringTheFirstSeconds) {
    RunMeter meter(kStart);
    meter.count(kStart + 500, 1000);
    EXPECT_EQ(meter.bytesPerSecond(kStart + 500), 2000U);
    EXPECT_EQ(meter.bytesPerSecond(kStart + 4000), 250U);
}

TEST(RunMeter, TellsTheRateOfTheLastTenSecondsAlone) {
    RunMeter meter(kStart);
    // A fast minute, then one at a tenth of its rate.
    for (int second = 1; second <= 60; ++second) {
        meter.count(kStart + second * 1000, static_cast<std::uint64_t>(second) * 1000);
    }
    EXPECT_EQ(meter.bytesPerSecond(kStart + 60000), 1000U);
    for (int second = 1; second <= 60; ++second) {
        meter.count(kStart + 60000 + second * 1000, 60000 + static_cast<std::uint64_t>(second) * 100);
        if (second == 5) {
            EXPECT_EQ(meter.bytesPerSecond(kStart + 65000), 550U) << "half of either";
        }
    }
    EXPECT_EQ(meter.bytesPerSecond(kStart + 120000), 100U);
}

TEST(RunMeter, FallsToZeroWhileNothingGetsDone) {
    RunMeter meter(kStart);
    for (int second = 1; second <= 20; ++second) {
        meter.count(kStart + second * 1000, static_cast<std::uint64_t>(second) * 1000);
    }
    EXPECT_EQ(meter.bytesPerSecond(kStart + 24000), 600U);
    EXPECT_EQ(meter.bytesPerSecond(kStart + 29999), 0U);
    EXPECT_EQ(meter.bytesPerSecond(kStart + 90000), 0U);
}

TEST(RunMeter, CountsOfALongBlockWhatLiesInTheTenSeconds) {
    RunMeter meter(kStart);
    meter.count(kStart + 60000, 60000); // one block in a minute
    EXPECT_EQ(meter.bytesPerSecond(kStart + 60000), 1000U);
}

TEST(RunMeter, KeepsFewSamplesOfManyBlocks) {
    RunMeter meter(kStart);
    for (int millisecond = 1; millisecond <= 60000; ++millisecond) {
        meter.count(kStart + millisecond, static_cast<std::uint64_t>(millisecond) * 50);
        ASSERT_LE(meter.sampleCount(), 104U);
    }
    EXPECT_EQ(meter.bytesPerSecond(kStart + 60000), 50000U);
}

// Whoever asks may have looked at the clock a moment before somebody counted.
TEST(RunMeter, StaysDefinedForAMomentThatHasPassed) {
    RunMeter meter(kStart);
    for (int second = 1; second <= 20; ++second) {
        meter.count(kStart + second * 1000, static_cast<std::uint64_t>(second) * 1000);
    }
    EXPECT_EQ(meter.bytesPerSecond(kStart + 15000), 1000U);
    EXPECT_EQ(meter.bytesPerSecond(kStart - 1), 0U);
}

} // namespace
} // namespace torvane
