#include "discovery/partition_table.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace torvane {
namespace {

constexpr std::size_t kHeaderBytes = 48;
constexpr std::size_t kEntryBytes = 144;
constexpr std::size_t kTypeOffset = 32;

/// A DRIVE_LAYOUT_INFORMATION_EX with room for `entries`, all of them unused.
std::vector<std::uint8_t> layout(PartitionStyle style, std::uint32_t entries) {
    std::vector<std::uint8_t> bytes(kHeaderBytes + entries * kEntryBytes);
    storeLe(std::span(bytes), 0, static_cast<std::uint32_t>(style));
    storeLe(std::span(bytes), 4, entries);
    for (std::size_t i = 8; i < 24; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    return bytes;
}

std::uint8_t& typeOf(std::vector<std::uint8_t>& bytes, std::size_t entry) {
    return bytes[kHeaderBytes + entry * kEntryBytes + kTypeOffset];
}

TEST(PartitionTable, OfAnMbrTellsSignatureAndUsedEntries) {
    std::vector<std::uint8_t> bytes = layout(PartitionStyle::kMbr, 4);
    typeOf(bytes, 0) = 7;
    typeOf(bytes, 2) = 12;
    bytes[kHeaderBytes + kEntryBytes + kTypeOffset + 1] = 1; // an unused entry, whatever stands behind its type
    const auto table = parseDriveLayout(bytes);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->style, PartitionStyle::kMbr);
    EXPECT_EQ(table->mbrSignature, 0x0B0A0908U);
    EXPECT_EQ(table->partitions, 2);
    EXPECT_EQ(table->gptDiskId, PartitionTable{}.gptDiskId);
}

TEST(PartitionTable, OfAGptTellsTheDisksIdAndUsedEntries) {
    std::vector<std::uint8_t> bytes = layout(PartitionStyle::kGpt, 3);
    bytes[kHeaderBytes + kEntryBytes + kTypeOffset + 15] = 1;
    const auto table = parseDriveLayout(bytes);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->style, PartitionStyle::kGpt);
    EXPECT_EQ(table->gptDiskId.front(), 8);
    EXPECT_EQ(table->gptDiskId.back(), 23);
    EXPECT_EQ(table->mbrSignature, 0U);
    EXPECT_EQ(table->partitions, 1);
}

TEST(PartitionTable, ARawDiskHasNoNameAndNoPartitions) {
    std::vector<std::uint8_t> bytes = layout(PartitionStyle::kRaw, 1);
    typeOf(bytes, 0) = 7;
    EXPECT_EQ(parseDriveLayout(bytes), PartitionTable{});
}

TEST(PartitionTable, EntriesOutsideTheAnswerAreNotSeen) {
    std::vector<std::uint8_t> bytes = layout(PartitionStyle::kMbr, 2);
    typeOf(bytes, 0) = 7;
    typeOf(bytes, 1) = 7;
    bytes.pop_back();
    storeLe(std::span(bytes), 4, std::uint32_t{0xFFFFFFFF});
    EXPECT_EQ(parseDriveLayout(bytes)->partitions, 1);
    bytes.resize(kHeaderBytes - 1);
    EXPECT_EQ(parseDriveLayout(bytes), std::nullopt);
}

} // namespace
} // namespace torvane
