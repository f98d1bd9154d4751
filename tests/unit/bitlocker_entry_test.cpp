#include "records/bitlocker_entry.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {
namespace {

using RecordBytes = std::array<std::uint8_t, 261>;

RecordBytes bytesOf(const BitLockerVolumeEntry& entry) {
    return std::bit_cast<RecordBytes>(entry);
}

TEST(BitLockerEntry, BeginsAsZeroBytes) {
    EXPECT_TRUE(std::ranges::all_of(bytesOf({}), [](std::uint8_t byte) { return byte == 0; }));
}

TEST(BitLockerEntry, HasItsFieldsWhereTheFileHasThem) {
    constexpr std::string_view kPassword = "111111-222222-333333-444444-555555-666666-777777-888888";
    BitLockerVolumeEntry entry;
    entry.hasKey = 1;
    entry.recoveryPassword.assign(kPassword);
    entry.driveLetter = 'E';

    RecordBytes expected{};
    expected[0] = 1;
    std::ranges::copy(kPassword, expected.begin() + 4);
    expected[260] = 'E';
    EXPECT_EQ(bytesOf(entry), expected);
}

TEST(BitLockerEntry, StoresTheFlagLittleEndian) {
    BitLockerVolumeEntry entry;
    entry.hasKey = 0x04030201U;
    const RecordBytes bytes = bytesOf(entry);
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(bytes.data()), 4), "\x01\x02\x03\x04");
    EXPECT_EQ(entry.hasKey, 0x04030201U);
}

TEST(BitLockerEntry, CutsAPasswordBeforeItsTerminator) {
    BitLockerVolumeEntry entry;
    entry.recoveryPassword.assign(std::string(1000, '7'));
    const RecordBytes bytes = bytesOf(entry);
    EXPECT_EQ(bytes[258], '7');
    EXPECT_EQ(bytes[259], 0);
    EXPECT_EQ(bytes[260], 0);
}

TEST(BitLockerEntry, ADriveHasRoomForTenAndNoneAtFirst) {
    const DriveRecord drive;
    EXPECT_EQ(drive.bitLockerEntryCount, 0);
    EXPECT_EQ(drive.bitLockerEntries.size(), 10U);
    for (const BitLockerVolumeEntry& entry : drive.bitLockerEntries) {
        EXPECT_EQ(bytesOf(entry), RecordBytes{});
    }
}

} // namespace
} // namespace torvane
