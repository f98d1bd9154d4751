#include "discovery/volume_extents.h"

#include "discovery/volume_table.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace torvane {
namespace {

/// A VOLUME_DISK_EXTENTS whose count may lie.
std::vector<std::uint8_t> answerOf(std::uint32_t count, const std::vector<VolumeExtent>& extents) {
    std::vector<std::uint8_t> bytes(8 + extents.size() * 24, 0xAA);
    storeLe(std::span(bytes), 0, count);
    for (std::size_t i = 0; i < extents.size(); ++i) {
        const std::size_t at = 8 + i * 24;
        storeLe(std::span(bytes), at, extents[i].diskNumber);
        storeLe(std::span(bytes), at + 8, static_cast<std::uint64_t>(extents[i].startingOffset));
        storeLe(std::span(bytes), at + 16, static_cast<std::uint64_t>(extents[i].length));
    }
    return bytes;
}

TEST(VolumeExtents, EachExtentIsTakenWhole) {
    const auto extents = parseVolumeDiskExtents(answerOf(2, {{3, 1048576, 0x123456789000}, {7, -1, 512}}));
    ASSERT_EQ(extents.size(), 2U);
    EXPECT_EQ(extents[0].diskNumber, 3U);
    EXPECT_EQ(extents[0].startingOffset, 1048576);
    EXPECT_EQ(extents[0].length, 0x123456789000);
    EXPECT_EQ(extents[1].diskNumber, 7U);
    EXPECT_EQ(extents[1].startingOffset, -1);
    EXPECT_EQ(extents[1].length, 512);
}

TEST(VolumeExtents, ExtentsBeyondTheCountAreNotTaken) {
    EXPECT_EQ(parseVolumeDiskExtents(answerOf(1, {{0, 0, 1}, {1, 0, 1}})).size(), 1U);
    EXPECT_TRUE(parseVolumeDiskExtents(answerOf(0, {{0, 0, 1}})).empty());
}

TEST(VolumeExtents, ACountBeyondWhatTheVolumeReturnedIsBounded) {
    EXPECT_EQ(parseVolumeDiskExtents(answerOf(1000, {{0, 0, 1}, {1, 0, 1}})).size(), 2U);
    EXPECT_EQ(parseVolumeDiskExtents(answerOf(std::numeric_limits<std::uint32_t>::max(), {{0, 0, 1}})).size(), 1U);
}

TEST(VolumeExtents, AnExtentThatIsNotWhollyThereIsDropped) {
    auto answer = answerOf(2, {{0, 0, 1}, {1, 0, 1}});
    answer.pop_back();
    EXPECT_EQ(parseVolumeDiskExtents(answer).size(), 1U);
}

TEST(VolumeExtents, AnAnswerShorterThanItsHeaderHasNone) {
    const auto answer = answerOf(1, {});
    for (std::size_t length = 0; length <= 8; ++length) {
        EXPECT_TRUE(parseVolumeDiskExtents(ByteView(answer).first(length)).empty()) << length;
    }
}

TEST(VolumeTable, ResetMarksAllRecordsUnusedAndLeavesOffsetsAndLengths) {
    VolumeTable table;
    table.count = 50;
    for (VolumeRecord& record : table.records) {
        record = {.startingOffset = 1, .extentLength = 2, .driveLetter = 'D', .diskNumber = 4};
    }
    resetVolumeTable(table);
    EXPECT_EQ(table.count, 0);
    for (const VolumeRecord& record : table.records) {
        EXPECT_EQ(record.driveLetter, -1);
        EXPECT_EQ(record.diskNumber, -1);
        EXPECT_EQ(record.startingOffset, 1);
        EXPECT_EQ(record.extentLength, 2);
    }
}

TEST(VolumeTable, ASpannedVolumeGivesOneRecordForEachExtentUnderOneLetter) {
    VolumeTable table;
    resetVolumeTable(table);
    appendVolume(table, 'E', std::vector<VolumeExtent>{{1, 4096, 8192}, {2, 512, 1024}});
    ASSERT_EQ(table.count, 2);
    EXPECT_EQ(table.records[0].driveLetter, 'E');
    EXPECT_EQ(table.records[0].diskNumber, 1);
    EXPECT_EQ(table.records[0].startingOffset, 4096);
    EXPECT_EQ(table.records[0].extentLength, 8192);
    EXPECT_EQ(table.records[1].driveLetter, 'E');
    EXPECT_EQ(table.records[1].diskNumber, 2);
    EXPECT_EQ(table.records[1].startingOffset, 512);
    EXPECT_EQ(table.records[1].extentLength, 1024);
    EXPECT_EQ(table.records[2].driveLetter, -1);
}

TEST(VolumeTable, AVolumeWithoutExtentsAddsNothing) {
    VolumeTable table;
    resetVolumeTable(table);
    appendVolume(table, 'D', {});
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.records[0].driveLetter, -1);
}

TEST(VolumeTable, ExtentsBeyondFiftyAreDropped) {
    VolumeTable table;
    resetVolumeTable(table);
    appendVolume(table, 'C', std::vector<VolumeExtent>(30, {0, 0, 1}));
    appendVolume(table, 'D', std::vector<VolumeExtent>(30, {1, 0, 1}));
    appendVolume(table, 'E', std::vector<VolumeExtent>(30, {2, 0, 1}));
    EXPECT_EQ(table.count, 50);
    EXPECT_EQ(table.records[29].driveLetter, 'C');
    EXPECT_EQ(table.records[30].driveLetter, 'D');
    EXPECT_EQ(table.records[49].driveLetter, 'D');
}

constexpr std::array kTwoExtents{VolumeExtent{.diskNumber = 2, .startingOffset = 1024, .length = 4096},
                                 VolumeExtent{.diskNumber = 3, .startingOffset = 0, .length = 512}};

TEST(VolumeTable, KeepsAVolumeWithAllItsExtentsAndNoOther) {
    VolumeTable before;
    appendVolume(before, 'D', kTwoExtents);
    appendVolume(before, 'E', kTwoExtents);
    VolumeTable table;
    resetVolumeTable(table);
    keepVolume(table, before, 'E');
    keepVolume(table, before, 'F');
    ASSERT_EQ(table.count, 2);
    EXPECT_EQ(table.records[0].driveLetter, 'E');
    EXPECT_EQ(table.records[0].diskNumber, 2);
    EXPECT_EQ(table.records[0].startingOffset, 1024);
    EXPECT_EQ(table.records[0].extentLength, 4096);
    EXPECT_EQ(table.records[1].diskNumber, 3);
    EXPECT_EQ(table.records[2].driveLetter, -1);
}

TEST(VolumeTable, KeepsNoMoreThanItHasRoomFor) {
    VolumeTable before;
    appendVolume(before, 'D', kTwoExtents);
    VolumeTable table;
    resetVolumeTable(table);
    for (int i = 0; i < 26; ++i) {
        keepVolume(table, before, 'D');
    }
    EXPECT_EQ(table.count, 50);
}

} // namespace
} // namespace torvane
