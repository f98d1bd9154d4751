#include "records/counters.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <array>

namespace torvane {
namespace {

constexpr std::array kEach{Counter::kReallocatedSectors, Counter::kPowerOnHours,   Counter::kReportedUncorrectable,
                           Counter::kReallocationEvents, Counter::kPendingSectors, Counter::kOfflineUncorrectable};

TEST(Counters, AreBornAsNotReported) {
    const DriveRecord record;
    for (const Counter counter : kEach) {
        EXPECT_EQ(record.disk[counter], -1);
        EXPECT_EQ(record.ssd[counter], -1);
    }
}

TEST(Counters, HaveAPlaceEach) {
    Counters counters;
    for (const Counter counter : kEach) {
        counters[counter] = static_cast<std::int32_t>(counter);
    }
    for (const Counter counter : kEach) {
        EXPECT_EQ(counters[counter], static_cast<std::int32_t>(counter));
    }
}

TEST(Counters, DifferByOneValue) {
    Counters counters;
    EXPECT_EQ(counters, Counters{});
    counters[Counter::kOfflineUncorrectable] = 0;
    EXPECT_NE(counters, Counters{});
    counters.fill(kNotReported);
    EXPECT_EQ(counters, Counters{});
}

struct Row {
    Counter counter;
};

constexpr std::array kWhole{Row{kEach[5]}, Row{kEach[4]}, Row{kEach[3]}, Row{kEach[2]}, Row{kEach[1]}, Row{kEach[0]}};
constexpr std::array kShort{Row{kEach[1]}, Row{kEach[2]}, Row{kEach[3]}, Row{kEach[4]}, Row{kEach[5]}};
constexpr std::array kTwice{Row{kEach[0]}, Row{kEach[1]}, Row{kEach[2]}, Row{kEach[3]}, Row{kEach[4]}, Row{kEach[4]}};

TEST(CounterTable, NamesEachCounterOnceInAnyOrder) {
    EXPECT_TRUE(namesEachCounterOnce(kWhole));
    EXPECT_FALSE(namesEachCounterOnce(kShort)) << "one is missing";
    EXPECT_FALSE(namesEachCounterOnce(kTwice)) << "one is missing, another twice there";
}

TEST(CounterTable, MayLeaveACounterToSomethingElseAndOnlyThatOne) {
    EXPECT_TRUE(namesEachCounterOnce(kShort, {kEach[0]}));
    EXPECT_FALSE(namesEachCounterOnce(kShort, {kEach[1]}));
    EXPECT_FALSE(namesEachCounterOnce(kWhole, {kEach[0]})) << "neither left nor done twice";
}

} // namespace
} // namespace torvane
