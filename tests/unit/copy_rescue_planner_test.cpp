#include "copy/rescue/rescue_map.h"
#include "copy/rescue/rescue_planner.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

namespace torvane {
namespace {

constexpr std::uint64_t kMegabyte = 1 << 20;
constexpr std::uint64_t kChunk = kRescueRead;

/// How a read of such bytes ends: how long it took in milliseconds, negative when it failed.
using Drive = std::function<std::int64_t(const RescueStep& step)>;

/// The first reads, as "status pass:first chunk or sector".
std::string firstReads(RescuePlanner& planner, const Drive& drive, int count, std::uint64_t unit = kChunk) {
    std::string reads;
    for (int i = 0; i < count; ++i) {
        const auto step = planner.next();
        if (!step) {
            return reads + "end ";
        }
        reads +=
            static_cast<char>(step->phase) + std::to_string(step->pass) + ":" + std::to_string(step->offset / unit);
        reads += step->length == unit ? " " : "+" + std::to_string(step->length) + " ";
        const std::int64_t took = drive(*step);
        if (took < 0) {
            planner.hasFailed(*step);
        } else {
            planner.hasRead(*step, took);
        }
    }
    return reads;
}

Drive failsWithin(std::uint64_t begin, std::uint64_t end) {
    return [=](const RescueStep& step) { return step.offset < end && step.offset + step.length > begin ? -1 : 0; };
}

TEST(RescuePlanner, JumpsFartherWithEachFailureInARow) {
    SourceMap map(1000 * kChunk); // jumps of up to 10 chunks
    RescuePlanner planner(map, {}, {});
    EXPECT_EQ(firstReads(planner, failsWithin(kChunk, 30 * kChunk), 8), "?1:0 ?1:1 ?1:3 ?1:6 ?1:11 ?1:20 ?1:31 ?1:32 ");
    EXPECT_EQ(planner.status(), (MapStatus{.position = 33 * kChunk, .phase = '?', .pass = 1}));
}

TEST(RescuePlanner, ComesBackFromTheOtherSideAndLeavesAtTheFirstFailure) {
    SourceMap map(20 * kChunk); // jumps of one chunk
    RescuePlanner planner(map, {}, {});
    EXPECT_EQ(firstReads(planner, failsWithin(4 * kChunk, 9 * kChunk), 21),
              "?1:0 ?1:1 ?1:2 ?1:3 ?1:4 ?1:6 ?1:8 ?1:10 ?1:11 ?1:12 ?1:13 ?1:14 ?1:15 ?1:16 ?1:17 ?1:18 ?1:19 "
              "?2:9 ?2:7 ?2:5 *1:4+512 ");
}

TEST(RescuePlanner, GoesTheOtherWayFromTheEnd) {
    SourceMap map(4 * kChunk + 100);
    RescuePlanner planner(map, {.fromEnd = true}, {});
    EXPECT_EQ(firstReads(planner, failsWithin(2 * kChunk, 2 * kChunk + 512), 6),
              "?1:4+100 ?1:3 ?1:2 ?1:0 ?2:1 *1:2+512 ");
}

TEST(RescuePlanner, TrimsFromBothEndsThenScrapesThenRetries) {
    SourceMap map(16 * 512);
    RescuePlanner planner(map, {.retryPasses = 2}, {.fromRescue = true});
    const Drive middle = [](const RescueStep& step) {
        const std::uint64_t sector = step.offset / 512;
        return step.length > 512 || sector == 2 || sector == 5 || sector == 11 ? -1 : 0;
    };
    EXPECT_EQ(firstReads(planner, middle, 100, 512),
              "?1:0+8192 *1:0 *1:1 *1:2 *1:15 *1:14 *1:13 *1:12 *1:11 /1:3 /1:4 /1:5 /1:6 /1:7 /1:8 /1:9 /1:10 "
              "-1:2 -1:5 -1:11 -2:11 -2:5 -2:2 end ");
    EXPECT_EQ(planner.status().phase, '+');
    EXPECT_EQ(map.bytes(RangeStatus::kBad), 3 * 512U);
}

TEST(RescuePlanner, AnEdgeBesideABadSectorIsTrimmed) {
    SourceMap map(8 * 512);
    map.mark(0, 8 * 512, RangeStatus::kFinished);
    map.mark(512, 512, RangeStatus::kBad);
    map.mark(1024, 1536, RangeStatus::kNonTrimmed);
    RescuePlanner planner(map, {}, {.fromRescue = true});
    EXPECT_EQ(firstReads(planner, failsWithin(0, 8 * 512), 1, 512), "*1:4 ");
    EXPECT_EQ(planner.status(), (MapStatus{.position = 1024, .phase = '*', .pass = 1}));
    EXPECT_EQ(firstReads(planner, failsWithin(0, 8 * 512), 9, 512), "/1:2 /1:3 end ");
}

TEST(RescuePlanner, TellsTheEndOfWhatIsLeftWhenItComesFromTheEnd) {
    SourceMap map(8 * 512);
    map.mark(0, 8 * 512, RangeStatus::kFinished);
    map.mark(1024, 1536, RangeStatus::kNonScraped);
    RescuePlanner planner(map, {.fromEnd = true}, {.fromRescue = true});
    EXPECT_EQ(firstReads(planner, failsWithin(0, 0), 1, 512), "/1:4 ");
    EXPECT_EQ(planner.status(), (MapStatus{.position = 2048, .phase = '/', .pass = 1}));
}

TEST(RescuePlanner, ReadsFartherInTheMidstOfADeadArea) {
    SourceMap map(256 * kChunk);
    RescuePlanner planner(map, {}, {.fromRescue = true, .place = MapStatus{.position = 0, .phase = '?', .pass = 5}});
    EXPECT_EQ(firstReads(planner, failsWithin(0, 200 * kChunk), 9),
              "?5:0 ?5:1 ?5:2 ?5:3 ?5:4+262144 ?5:8+524288 ?5:16+1048576 ?5:32+1048576 ?5:48+1048576 ");
}

/// Bytes of a slow area answer in 2 s for each read.
TEST(RescuePlanner, PutsSlowAreasOffToAPassOfTheirOwn) {
    SourceMap map(1000 * kChunk);
    RescuePlanner planner(map, {}, {});
    const Drive drive = [](const RescueStep& step) {
        return step.offset >= 500 * kChunk && step.offset < 540 * kChunk ? 2000 : 10;
    };
    std::string passes;
    std::uint64_t slowInFirst = 0;
    while (const auto step = planner.next()) {
        slowInFirst += step->pass == 1 && drive(*step) == 2000 ? 1 : 0;
        if (passes.empty() || passes.back() != static_cast<char>('0' + step->pass)) {
            passes += static_cast<char>('0' + step->pass);
        }
        planner.hasRead(*step, drive(*step));
    }
    EXPECT_EQ(passes, "123");
    EXPECT_LE(slowInFirst, 10U) << "the jumps grow";
    EXPECT_EQ(map.bytes(RangeStatus::kFinished), map.size());
}

TEST(RescuePlanner, GoesOnWhereItStopped) {
    const RescueOptions options{.retryPasses = 2};
    SourceMap untried(10 * kChunk);
    RescuePlanner copying(untried, options,
                          {.fromRescue = true, .place = MapStatus{.position = 5 * kChunk, .phase = '?', .pass = 2}});
    EXPECT_EQ(firstReads(copying, failsWithin(0, 0), 6), "?2:4 ?2:3 ?2:2 ?2:1 ?2:0 ?3:5 ");

    SourceMap bad(10 * 512);
    bad.mark(0, bad.size(), RangeStatus::kBad);
    const MapStatus second{.position = 1024, .phase = '-', .pass = 2};
    RescuePlanner retrying(bad, options, {.fromRescue = true, .place = second});
    EXPECT_EQ(firstReads(retrying, failsWithin(0, ~0ULL), 9, 512), "-2:1 -2:0 end ");
    RescuePlanner anew(bad, {.retryPasses = 1}, {.fromRescue = true, .place = second});
    EXPECT_EQ(firstReads(anew, failsWithin(0, ~0ULL), 2, 512), "-1:0 -1:1 ");
}

/// The place of a pass that is not what was stopped may lie behind what is left.
TEST(RescuePlanner, TheLastPassBeginsAgainWhileAnythingIsLeft) {
    SourceMap map(10 * kChunk);
    RescuePlanner planner(map, {},
                          {.fromRescue = true, .place = MapStatus{.position = 9 * kChunk, .phase = '?', .pass = 5}});
    EXPECT_EQ(firstReads(planner, failsWithin(0, 0), 3), "?5:9 ?5:0 ?5:1 ");
}

TEST(RescuePlanner, ReadsBlocksThatACopyGaveUpAsIfUntried) {
    SourceMap map(64 * kMegabyte);
    map.mark(0, 32 * kMegabyte, RangeStatus::kNonTrimmed);
    map.mark(32 * kMegabyte, 32 * kMegabyte, RangeStatus::kFinished);
    map.mark(40 * kMegabyte, kMegabyte, RangeStatus::kNonTrimmed);
    SourceMap rescued = map;
    RescuePlanner planner(map, {}, {.place = MapStatus{.position = 0, .phase = '*', .pass = 1}});
    EXPECT_EQ(firstReads(planner, failsWithin(0, 0), 2), "?1:0 ?1:1 ");
    EXPECT_EQ(map.bytes(RangeStatus::kNonTrimmed), kMegabyte);
    RescuePlanner own(rescued, {}, {.fromRescue = true});
    EXPECT_EQ(firstReads(own, failsWithin(0, 0), 1, 512), "*1:0 ");
}

TEST(RescueMap, TellsWhatItIsAndItsDirection) {
    const MapStatus place{.position = 512, .phase = '?', .pass = 2};
    const SourceMap map(1024);
    for (const bool fromEnd : {false, true}) {
        const auto file =
            std::get<MapFile>(readMapFile(rescueMapText(map, place, fromEnd, {"Mapfile. Created by Torvane"})));
        EXPECT_TRUE(rescueOriginOf(file, fromEnd).fromRescue);
        EXPECT_EQ(rescueOriginOf(file, fromEnd).place, place);
        EXPECT_TRUE(rescueOriginOf(file, !fromEnd).fromRescue);
        EXPECT_EQ(rescueOriginOf(file, !fromEnd).place, std::nullopt);
    }
    const auto other =
        std::get<MapFile>(readMapFile(mapFileText(map, place, {"Mapfile. Created by GNU ddrescue version 1.27"})));
    EXPECT_FALSE(rescueOriginOf(other, false).fromRescue);
    EXPECT_EQ(rescueOriginOf(other, false).place, place);
    EXPECT_EQ(rescueOriginOf(other, true).place, std::nullopt);
    const auto copy = std::get<MapFile>(readMapFile(mapFileText(map, {"Mapfile. Created by Torvane"})));
    EXPECT_FALSE(rescueOriginOf(copy, false).fromRescue);
    EXPECT_EQ(rescueOriginOf(copy, false).place, std::nullopt);
}

TEST(RescuePace, ComparesWithWhatTheDriveGaveSoFar) {
    using Verdict = RescuePace::Verdict;
    RescuePace pace;
    EXPECT_EQ(pace.judge(kMegabyte, 1000), Verdict::kUsual) << "nothing is known yet";
    EXPECT_EQ(pace.judge(100 * kMegabyte, 999), Verdict::kOpen);
    EXPECT_EQ(pace.judge(0, 1), Verdict::kUsual);
    EXPECT_EQ(pace.judge(6 * kMegabyte, 1000), Verdict::kUsual);
    EXPECT_EQ(pace.judge(3 * kMegabyte, 1000), Verdict::kSlow);
    EXPECT_EQ(pace.judge(3 * kMegabyte, 1000), Verdict::kSlow) << "slow reads change no expectation";
    EXPECT_EQ(pace.judge(kMegabyte, -5), Verdict::kOpen) << "a clock that was set back";
    EXPECT_EQ(pace.judge(kMegabyte, 999), Verdict::kOpen);
    pace.moveAway();
    EXPECT_EQ(pace.judge(kMegabyte, 999), Verdict::kOpen);
}

/// A cost that grew with the drive's size, or with the number of ranges in each step, would take hours here.
TEST(RescuePlanner, StaysSmoothOnALargeDriveWithManyBadPlaces) {
    constexpr std::uint64_t kSize = 20'000'000'000'000 / 4096 * 4096;
    constexpr std::uint64_t kRanges = 100'000;
    SourceMap map(kSize);
    map.mark(0, kSize, RangeStatus::kFinished);
    for (std::uint64_t i = 0; i < kRanges; ++i) {
        map.mark(kSize / kRanges * i / 4096 * 4096, 2 * 4096, i % 8 == 0 ? RangeStatus::kNonTried : RangeStatus::kBad);
    }
    RescuePlanner planner(map, {.sectorSize = 4096}, {.fromRescue = true});
    const auto begun = std::chrono::steady_clock::now();
    std::uint64_t reads = 0;
    while (const auto step = planner.next()) {
        ++reads;
        if (reads % 2 == 0) {
            planner.hasFailed(*step);
        } else {
            planner.hasRead(*step, 1);
        }
    }
    EXPECT_GE(reads, kRanges / 8);
    EXPECT_LE(reads, kRanges / 2);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20)) << reads << " reads";
}

} // namespace
} // namespace torvane
