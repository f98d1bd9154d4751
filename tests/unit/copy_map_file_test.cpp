#include "copy/evidence/map_file.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::uint64_t kBlock = 0x2000000;

TEST(MapFile, OfAWholeCopyIsOneFinishedBlock) {
    SourceMap map(3 * kBlock);
    map.mark(0, 3 * kBlock, RangeStatus::kFinished);
    EXPECT_EQ(mapFileText(map, {"Mapfile. Created by Torvane 1.2", "Image"}),
              "# Mapfile. Created by Torvane 1.2\n"
              "# Image\n"
              "# current_pos  current_status  current_pass\n"
              "0x00000000     +               1\n"
              "#      pos        size  status\n"
              "0x00000000  0x06000000  +\n");
}

TEST(MapFile, BeginsWithTheFirstPlaceThatWasNotTried) {
    SourceMap map(0x7470C06000);
    map.mark(0, kBlock, RangeStatus::kNonTrimmed);
    map.mark(kBlock, 0x7000000000 - kBlock, RangeStatus::kFinished);
    EXPECT_EQ(mapFileText(map, {}), "# current_pos  current_status  current_pass\n"
                                    "0x7000000000     ?               1\n"
                                    "#      pos        size  status\n"
                                    "0x00000000  0x02000000  *\n"
                                    "0x02000000  0x6FFE000000  +\n"
                                    "0x7000000000  0x470C06000  ?\n");
}

TEST(MapFile, ThenWithThoseOfTheOtherPhases) {
    SourceMap map(400);
    map.mark(0, 400, RangeStatus::kFinished);
    map.mark(100, 50, RangeStatus::kBad);
    const auto statusLine = [&] {
        const std::string text = mapFileText(map, {});
        return text.substr(text.find('\n') + 1, 33);
    };
    EXPECT_EQ(statusLine(), "0x00000064     -               1\n");
    map.mark(200, 50, RangeStatus::kNonScraped);
    EXPECT_EQ(statusLine(), "0x000000C8     /               1\n");
    map.mark(300, 50, RangeStatus::kNonTrimmed);
    EXPECT_EQ(statusLine(), "0x0000012C     *               1\n");
}

TEST(MapFile, OfNothingIsFinished) {
    EXPECT_EQ(mapFileText(SourceMap(), {}), "# current_pos  current_status  current_pass\n"
                                            "0x00000000     +               1\n"
                                            "#      pos        size  status\n");
}

TEST(MapFile, OutsideTextStaysInItsComment) {
    EXPECT_EQ(mapFileText(SourceMap(), {"drive [A\n0x0 0x1 +]"}).substr(0, 24), "# drive [A 0x0 0x1 +]\n# ");
}

const MapFile& mapIn(const std::variant<MapFile, MapFault>& read) {
    if (const auto* fault = std::get_if<MapFault>(&read)) {
        ADD_FAILURE() << "line " << fault->line << ": " << fault->reason;
        static const MapFile kNone;
        return kNone;
    }
    return std::get<MapFile>(read);
}

TEST(MapFileReader, ReadsWhatWasWritten) {
    SourceMap map(0x7470C06000);
    map.mark(0, kBlock, RangeStatus::kNonTrimmed);
    map.mark(kBlock, 5 * kBlock, RangeStatus::kFinished);
    map.mark(7 * kBlock, 512, RangeStatus::kBad);
    map.mark(8 * kBlock, 512, RangeStatus::kNonScraped);
    const MapStatus status{.position = 0x7000000000, .phase = '-', .pass = 3};
    const auto read = readMapFile(mapFileText(map, status, {"Made by [A # B]"}));
    EXPECT_EQ(mapIn(read).map.ranges(), map.ranges());
    EXPECT_EQ(mapIn(read).status, status);
    EXPECT_EQ(mapIn(read).comments.front(), "Made by [A # B]");
}

TEST(MapFileReader, TakesWhateverTheFormatAllows) {
    const auto read = readMapFile("#\r\n\r\n  # indented\t\r\n"
                                  "0x10 F # the pass is not told\r\n"
                                  "\t010\t0x8 +\n"
                                  "16 16 -\t# a bad place\n"
                                  "0X20 0 /\n"
                                  "32 8 *",
                                  100);
    EXPECT_EQ(mapIn(read).status, (MapStatus{.position = 16, .phase = 'F', .pass = 1}));
    EXPECT_EQ(mapIn(read).comments, (std::vector<std::string>{"", "indented", "the pass is not told", "a bad place"}));
    const std::vector<MappedRange> expected{{.offset = 0, .length = 8, .status = RangeStatus::kNonTried},
                                            {.offset = 8, .length = 8, .status = RangeStatus::kFinished},
                                            {.offset = 16, .length = 16, .status = RangeStatus::kBad},
                                            {.offset = 32, .length = 8, .status = RangeStatus::kNonTrimmed},
                                            {.offset = 40, .length = 60, .status = RangeStatus::kNonTried}};
    EXPECT_EQ(mapIn(read).map.ranges(), expected);
}

TEST(MapFileReader, LeavesOutWhatWasNeverTriedBehindTheSource) {
    const auto read = readMapFile("0 ? 1\n0 50 +\n50 0x7FFFFFFFFFFFFFCD ?\n", 60);
    EXPECT_EQ(mapIn(read).map.size(), 60U);
    EXPECT_EQ(mapIn(read).map.bytes(RangeStatus::kFinished), 50U);
}

TEST(MapFileReader, WithoutASizeTheLastBlockIsTheEnd) {
    EXPECT_EQ(mapIn(readMapFile("0 + 1\n8 8 +\n")).map.size(), 16U);
    EXPECT_EQ(mapIn(readMapFile("0 + 1\n")).map.size(), 0U);
}

TEST(MapFileReader, SaysWhyATextIsNoMap) {
    const auto faultOf = [](std::string_view text) {
        const auto read = readMapFile(text, 100);
        const auto* fault = std::get_if<MapFault>(&read);
        return fault == nullptr ? "none" : std::to_string(fault->line) + ": " + fault->reason;
    };
    EXPECT_EQ(faultOf(""), "0: the status line is missing");
    EXPECT_EQ(faultOf("# nothing but comments\n\n"), "2: the status line is missing");
    EXPECT_EQ(faultOf("0"), "1: a status line has a position, a status and a pass");
    EXPECT_EQ(faultOf("0 ? 1 2 3 4 5"), "1: a status line has a position, a status and a pass");
    EXPECT_EQ(faultOf("-1 ? 1"), "1: the position is no number");
    EXPECT_EQ(faultOf("09 ? 1"), "1: the position is no number");
    EXPECT_EQ(faultOf("0x ? 1"), "1: the position is no number");
    EXPECT_EQ(faultOf("0x8000000000000000 ? 1"), "1: the position is no number");
    EXPECT_EQ(faultOf("99999999999999999999999 ? 1"), "1: the position is no number");
    EXPECT_EQ(faultOf("0 x 1"), "1: the current status is none of ? * / - F G +");
    EXPECT_EQ(faultOf("0 ?? 1"), "1: the current status is none of ? * / - F G +");
    EXPECT_EQ(faultOf("0 ? 0"), "1: the pass is no number from 1 on");
    EXPECT_EQ(faultOf("0 ? 0x1"), "1: the pass is no number from 1 on");
    EXPECT_EQ(faultOf("0 ? 5000000000"), "1: the pass is no number from 1 on");
    EXPECT_EQ(faultOf("0 ? 1\n\n0 8"), "3: a block has a position, a size and a status");
    EXPECT_EQ(faultOf("0 ? 1\n0 8 + 1"), "2: a block has a position, a size and a status");
    EXPECT_EQ(faultOf("0 ? 1\n0 8x +"), "2: position and size are not those of a block");
    EXPECT_EQ(faultOf("0 ? 1\nx 8 +"), "2: position and size are not those of a block");
    EXPECT_EQ(faultOf("0 ? 1\n1 0x7FFFFFFFFFFFFFFF +"), "2: position and size are not those of a block");
    EXPECT_EQ(faultOf("0 ? 1\n0 8 F"), "2: the status is none of ? * / - +");
    EXPECT_EQ(faultOf("0 ? 1\n0 8 +#"), "2: the status is none of ? * / - +");
    EXPECT_EQ(faultOf("0 ? 1\n0 8 +\n9 8 +"), "3: the block does not begin where the one before it ends");
    EXPECT_EQ(faultOf("0 ? 1\n0 8 +\n7 8 +"), "3: the block does not begin where the one before it ends");
    EXPECT_EQ(faultOf("0 ? 1\n0 101 +"), "2: the map tells of places behind the end of the source");
}

} // namespace
} // namespace torvane
