#include "copy/evidence/source_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace torvane {
namespace {

constexpr RangeStatus kNonTried = RangeStatus::kNonTried;
constexpr RangeStatus kNonTrimmed = RangeStatus::kNonTrimmed;
constexpr RangeStatus kFinished = RangeStatus::kFinished;

/// "0+100 100?20": first byte, status and length of each range.
std::string inWords(const SourceMap& map) {
    std::string text;
    for (const MappedRange& range : map.ranges()) {
        text += (text.empty() ? "" : " ") + std::to_string(range.offset) + static_cast<char>(range.status) +
                std::to_string(range.length);
    }
    return text;
}

TEST(SourceMap, OfNothingHasNoRange) {
    SourceMap map;
    map.mark(0, 5, kFinished);
    EXPECT_EQ(inWords(map), "");
    EXPECT_EQ(map.bytes(kFinished), 0U);
}

TEST(SourceMap, IsNotTriedAtFirst) {
    const SourceMap map(120);
    EXPECT_EQ(inWords(map), "0?120");
    EXPECT_EQ(map.size(), 120U);
    EXPECT_EQ(map.bytes(kNonTried), 120U);
    EXPECT_EQ(map.bytes(kFinished), 0U);
}

TEST(SourceMap, MergesNeighboursOfOneStatus) {
    SourceMap map(100);
    map.mark(20, 10, kFinished);
    map.mark(40, 10, kFinished);
    EXPECT_EQ(inWords(map), "0?20 20+10 30?10 40+10 50?50");
    map.mark(30, 10, kFinished);
    EXPECT_EQ(inWords(map), "0?20 20+30 50?50");
    map.mark(0, 20, kFinished);
    map.mark(50, 50, kFinished);
    EXPECT_EQ(inWords(map), "0+100");
}

TEST(SourceMap, ReplacesAndCutsWhatWasThere) {
    SourceMap map(100);
    map.mark(10, 80, kFinished);
    map.mark(30, 20, kNonTrimmed);
    EXPECT_EQ(inWords(map), "0?10 10+20 30*20 50+40 90?10");
    map.mark(5, 90, kNonTrimmed);
    EXPECT_EQ(inWords(map), "0?5 5*90 95?5");
    map.mark(95, 5, kNonTrimmed);
    map.mark(0, 100, kNonTried);
    EXPECT_EQ(inWords(map), "0?100");
}

TEST(SourceMap, LeavesOutWhatLiesBehindItsEnd) {
    SourceMap map(100);
    map.mark(90, 1000, kFinished);
    map.mark(100, 5, kNonTrimmed);
    map.mark(5000, 5, kNonTrimmed);
    map.mark(95, ~0ULL, kNonTrimmed);
    map.mark(50, 0, kNonTrimmed);
    EXPECT_EQ(inWords(map), "0?90 90+5 95*5");
}

std::optional<MappedRange> nextByLooking(const std::vector<MappedRange>& ranges, RangeStatus status,
                                         std::uint64_t from) {
    for (const MappedRange& range : ranges) {
        const std::uint64_t end = range.offset + range.length;
        if (range.status == status && end > from) {
            const std::uint64_t begin = std::max(range.offset, from);
            return MappedRange{.offset = begin, .length = end - begin, .status = status};
        }
    }
    return std::nullopt;
}

std::optional<MappedRange> previousByLooking(const std::vector<MappedRange>& ranges, RangeStatus status,
                                             std::uint64_t end) {
    std::optional<MappedRange> last;
    for (const MappedRange& range : ranges) {
        if (range.status == status && range.offset < end) {
            last = range;
            last->length = std::min(range.length, end - range.offset);
        }
    }
    return last;
}

TEST(SourceMap, AgreesWithAStatusForEachByte) {
    std::mt19937_64 random(7);
    const std::vector<RangeStatus> statuses{kNonTried, kNonTrimmed, RangeStatus::kNonScraped, RangeStatus::kBad,
                                            kFinished};
    constexpr std::uint64_t kSize = 60;
    SourceMap map(kSize);
    std::vector<RangeStatus> bytes(kSize, kNonTried);
    for (int step = 0; step < 5000; ++step) {
        const std::uint64_t offset = random() % kSize;
        const std::uint64_t length = random() % 20;
        const RangeStatus status = statuses[random() % statuses.size()];
        map.mark(offset, length, status);
        for (std::uint64_t i = offset; i < offset + length && i < kSize; ++i) {
            bytes[i] = status;
        }
        std::vector<RangeStatus> told;
        const MappedRange* before = nullptr;
        const std::vector<MappedRange> ranges = map.ranges();
        for (const MappedRange& range : ranges) {
            ASSERT_EQ(range.offset, told.size());
            ASSERT_TRUE(before == nullptr || before->status != range.status) << "neighbours of one status";
            told.insert(told.end(), range.length, range.status);
            before = &range;
        }
        ASSERT_EQ(told, bytes);
        const std::uint64_t place = random() % (kSize + 2);
        for (const RangeStatus each : statuses) {
            ASSERT_EQ(map.next(each, place), nextByLooking(ranges, each, place));
            ASSERT_EQ(map.previous(each, place), previousByLooking(ranges, each, place));
            ASSERT_EQ(map.count(each),
                      static_cast<std::size_t>(std::ranges::count(ranges, each, &MappedRange::status)));
            ASSERT_EQ(map.bytes(each), static_cast<std::uint64_t>(std::count(bytes.begin(), bytes.end(), each)));
        }
    }
}

// A cost that grew with the number of ranges would take minutes here.
TEST(SourceMap, MarksAHundredThousandRangesAtOnce) {
    constexpr std::uint64_t kRanges = 100'000;
    constexpr std::uint64_t kStep = 1 << 20;
    SourceMap map(kRanges * kStep);
    for (std::uint64_t i = 0; i < kRanges; ++i) {
        map.mark(i * 7919 % kRanges * kStep, 512, kNonTrimmed);
    }
    EXPECT_EQ(map.ranges().size(), 2 * kRanges);
    EXPECT_EQ(map.bytes(kNonTrimmed), 512 * kRanges);
}

TEST(SourceMap, TellsTheStatusOfAPlace) {
    SourceMap map(100);
    map.mark(20, 10, RangeStatus::kFinished);
    EXPECT_EQ(map.statusAt(19), RangeStatus::kNonTried);
    EXPECT_EQ(map.statusAt(20), RangeStatus::kFinished);
    EXPECT_EQ(map.statusAt(29), RangeStatus::kFinished);
    EXPECT_EQ(map.statusAt(30), RangeStatus::kNonTried);
    EXPECT_EQ(map.statusAt(100), RangeStatus::kNonTried) << "behind the source";
}

TEST(SourceMap, TellsTheRangeOfAPlace) {
    SourceMap map(100);
    map.mark(20, 10, kFinished);
    EXPECT_EQ(map.rangeAt(25), (MappedRange{.offset = 20, .length = 10, .status = kFinished}));
    EXPECT_EQ(map.rangeAt(99), (MappedRange{.offset = 30, .length = 70, .status = kNonTried}));
}

} // namespace
} // namespace torvane
