#include "tests/unit/rescue_model/simulated_rescue.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

using namespace rescue_model;

constexpr std::uint64_t kChunk = kRescueRead;

SourceMap finishedBut(std::uint64_t size, std::uint64_t offset, std::uint64_t length, RangeStatus status) {
    SourceMap map(size);
    map.mark(0, size, RangeStatus::kFinished);
    map.mark(offset, length, status);
    return map;
}

TEST(RescueRun, ReadsEverythingAndMarksWhatIsBad) {
    SimulatedRescue rescue(DriveModel(16 * kChunk + 300, 512));
    rescue.drive.fail(1000, 3, kNeverRead);
    const RescueResult result = rescue.run({.retryPasses = 1});
    EXPECT_EQ(result.ending, RescueEnding::kFinished);
    EXPECT_TRUE(result.mapSaved);
    EXPECT_EQ(rescue.faults, "");
    EXPECT_EQ(result.figures.rescued, rescue.drive.size - 1536);
    EXPECT_EQ(result.figures.bad, 1536U);
    EXPECT_EQ(result.figures.badAreas, 1U);
    EXPECT_EQ(result.figures.missing, 0U);
    EXPECT_EQ(result.figures.untried, 0U);
    EXPECT_EQ(result.figures.reads, rescue.reads);
    EXPECT_EQ(result.figures.failedReads, 7U) << "one large, three sectors, three again";
    EXPECT_EQ(result.figures.failedReads, rescue.failedReads);
    EXPECT_GE(result.figures.slowestRead, 1000);
    EXPECT_GE(result.figures.sinceGoodRead, 3000) << "the retries";
    EXPECT_EQ(result.figures.step.phase, RangeStatus::kBad);
    EXPECT_EQ(rescue.shown.reads, rescue.reads);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kBad), 1536U);
    EXPECT_EQ(rescue.held()[999], Held::kData);
    EXPECT_EQ(rescue.held()[1000], Held::kMarker);
}

TEST(RescueRun, SavesAtTheStartThenEveryHalfMinuteAndAtTheEnd) {
    SimulatedRescue rescue(DriveModel(100 * kChunk, 512));
    const auto flushesIn = [&](std::int64_t millisecondsEach) {
        rescue.savedMap.clear();
        rescue.flushes = 0;
        rescue.script.source = [&rescue, millisecondsEach](std::uint64_t, std::size_t) {
            rescue.microseconds += millisecondsEach * 1000;
            return SourceAnswer::kWhole;
        };
        EXPECT_EQ(rescue.run({}).ending, RescueEnding::kFinished);
        return rescue.flushes;
    };
    EXPECT_EQ(flushesIn(0), 2U);
    EXPECT_EQ(flushesIn(1000), 5U);
}

TEST(RescueRun, StopsWhenItIsNotWanted) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.script.wanted = [&] { return rescue.reads < 4; };
    const RescueResult result = rescue.run({});
    EXPECT_EQ(result.ending, RescueEnding::kStopped);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kFinished), 4 * kChunk);
    rescue.script = {};
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kFinished);
    EXPECT_EQ(rescue.reads, 10U);
    EXPECT_EQ(rescue.faults, "");
}

TEST(RescueRun, WaitsForADriveThatGoesAndReadsOn) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    int waits = 0;
    rescue.script.source = [&](std::uint64_t offset, std::size_t) {
        return offset == 4 * kChunk && waits == 0 ? SourceAnswer::kGone : SourceAnswer::kWhole;
    };
    rescue.script.returns = [&] {
        EXPECT_EQ(rescue.map().bytes(RangeStatus::kFinished), 4 * kChunk) << "saved before it waits";
        return ++waits == 1;
    };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kFinished);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kFinished), rescue.drive.size);
}

TEST(RescueRun, APlaceAtWhichTheDriveGoesTwiceCountsAsFailed) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    int waits = 0;
    rescue.script.source = [&](std::uint64_t offset, std::size_t length) {
        return offset <= 4 * kChunk && offset + length > 4 * kChunk ? SourceAnswer::kGone : SourceAnswer::kWhole;
    };
    rescue.script.returns = [&] { return ++waits < 100; };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kFinished);
    EXPECT_EQ(waits, 4) << "twice as a large read, twice as a sector";
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kBad), 512U);
    EXPECT_EQ(rescue.held()[4 * kChunk / 512], Held::kMarker);
}

TEST(RescueRun, AReadThatNeverCameBackCountsAsFailed) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.script.source = [](std::uint64_t offset, std::size_t) {
        return offset == 4 * kChunk ? SourceAnswer::kLeft : SourceAnswer::kWhole;
    };
    rescue.script.returns = [] { return false; };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kSourceLeft);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kNonTrimmed), kChunk);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kNonTried), 5 * kChunk);
    EXPECT_EQ(rescue.faults, "");
}

TEST(RescueRun, AWriteThatFailsEndsItAndItsPlaceIsUntried) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.script.writes = [&] { return rescue.reads < 4; };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kWriteFailed);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kFinished), 3 * kChunk);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kNonTried), 7 * kChunk);
}

TEST(RescueRun, AMarkerThatCannotBeWrittenEndsIt) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.drive.fail(0, 1, kNeverRead);
    rescue.script.writes = [] { return false; };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kWriteFailed);
    EXPECT_EQ(rescue.map().bytes(RangeStatus::kNonTried), 10 * kChunk);
}

TEST(RescueRun, WhatAFlushLostIsUntriedAgain) {
    SimulatedRescue rescue(DriveModel(100 * kChunk, 512));
    rescue.script.source = [&](std::uint64_t, std::size_t) {
        rescue.microseconds += 1'000'000;
        return SourceAnswer::kWhole;
    };
    rescue.script.flushes = [&] { return rescue.flushes != 3; };
    const RescueResult result = rescue.run({});
    EXPECT_EQ(result.ending, RescueEnding::kWriteFailed);
    EXPECT_TRUE(result.mapSaved);
    EXPECT_NEAR(static_cast<double>(rescue.map().bytes(RangeStatus::kFinished)), 30.0 * kChunk, kChunk);
    EXPECT_EQ(rescue.faults, "");
    rescue.script = {};
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kFinished);
    EXPECT_EQ(rescue.faults, "");
}

TEST(RescueRun, ATargetThatTakesNothingAtTheStartIsNotReadFor) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.script.flushes = [] { return false; };
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kWriteFailed);
    EXPECT_EQ(rescue.reads, 0U);
}

TEST(RescueRun, TellsThatTheMapCouldNotBeSaved) {
    SimulatedRescue rescue(DriveModel(10 * kChunk, 512));
    rescue.script.saves = [&] { return rescue.reads == 0; };
    const RescueResult result = rescue.run({});
    EXPECT_EQ(result.ending, RescueEnding::kFinished);
    EXPECT_FALSE(result.mapSaved);
}

/// Another program leaves what was there.
TEST(RescueRun, FailedPlacesOfAForeignMapGetTheirMarkers) {
    SimulatedRescue rescue(DriveModel(40 * kChunk, 512));
    int looks = 0;
    rescue.script.wanted = [&looks] { return looks-- > 0; };
    for (const RangeStatus status : {RangeStatus::kNonTrimmed, RangeStatus::kNonScraped, RangeStatus::kBad}) {
        const SourceMap map = finishedBut(rescue.drive.size, 10 * kChunk, kChunk + 512, status);
        rescue.takeUp(map, mapFileText(map, {"Mapfile. Created by GNU ddrescue version 1.27"}), Held::kNothing);
        looks = 1;
        EXPECT_EQ(rescue.run({}).ending, RescueEnding::kStopped) << "between two pieces";
        EXPECT_EQ(rescue.held()[11 * kChunk / 512], Held::kNothing);
        looks = 2;
        EXPECT_EQ(rescue.run({}).ending,
                  status == RangeStatus::kBad ? RescueEnding::kFinished : RescueEnding::kStopped);
        EXPECT_EQ(rescue.held()[10 * kChunk / 512], Held::kMarker);
        EXPECT_EQ(rescue.held()[11 * kChunk / 512], Held::kMarker);
        EXPECT_EQ(rescue.held()[11 * kChunk / 512 + 1], Held::kData);
    }
    const SourceMap map = finishedBut(rescue.drive.size, 10 * kChunk, kChunk, RangeStatus::kBad);
    rescue.takeUp(map, mapFileText(map, {}), Held::kNothing);
    rescue.script.writes = [] { return false; };
    looks = 100;
    EXPECT_EQ(rescue.run({}).ending, RescueEnding::kWriteFailed);
    EXPECT_EQ(rescue.faults, "");
}

/// The bytes themselves, of a map whose ranges end within sectors.
class ByteRescue : public RescueSource, public RescueTarget, public RescueWatch {
  public:
    SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes) override {
        EXPECT_EQ(offset % 4096, 0U);
        EXPECT_EQ(bytes.size() % 4096, 0U);
        std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(), bytes.begin());
        return SourceAnswer::kWhole;
    }
    bool awaitReturn() override { return false; }
    bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        std::copy(bytes.begin(), bytes.end(), target.begin() + static_cast<std::ptrdiff_t>(offset));
        return true;
    }
    bool flush() override { return true; }
    bool isWanted() override { return true; }
    std::int64_t now() override { return 0; }
    bool saveMap(const SourceMap& map, const MapStatus&) override {
        saved = map;
        return true;
    }
    void show(const RescueFigures&, const SourceMap&) override {}

    std::vector<std::byte> source = std::vector<std::byte>(5 * kChunk);
    std::vector<std::byte> target = source;
    SourceMap saved;
};

TEST(RescueRun, WritesNothingButWhatIsMissing) {
    ByteRescue rescue;
    for (std::size_t i = 0; i < rescue.source.size(); ++i) {
        rescue.source[i] = static_cast<std::byte>(1 + i % 251);
    }
    SourceMap map = finishedBut(rescue.source.size(), 1000, 3 * kChunk, RangeStatus::kNonTried);
    EXPECT_FALSE(hasWholeSectors(map, 4096));
    EXPECT_TRUE(hasWholeSectors(map, 8));
    std::vector<std::byte> buffer(kRescueBuffer);
    const RescueResult result = runRescue(map, {.sectorSize = 4096}, {}, rescue, rescue, rescue, buffer);
    EXPECT_EQ(result.ending, RescueEnding::kFinished);
    EXPECT_EQ(rescue.saved.bytes(RangeStatus::kFinished), rescue.source.size());
    for (std::size_t i = 0; i < rescue.target.size(); ++i) {
        const bool missing = i >= 1000 && i < 1000 + 3 * kChunk;
        ASSERT_EQ(rescue.target[i], missing ? rescue.source[i] : std::byte{0}) << i;
    }
}

} // namespace
} // namespace torvane
