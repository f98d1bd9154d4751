#include "discovery/ata_identify.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

/// An identify block with the given texts at the words of the standard.
class IdentifyBlock {
  public:
    IdentifyBlock(std::string_view model, std::string_view serialNumber, std::string_view firmware) {
        put(54, 40, model);
        put(20, 20, serialNumber);
        put(46, 8, firmware);
    }
    [[nodiscard]] ByteView bytes() const { return bytes_; }

  private:
    // The first character of each pair is the word's high byte, hence the second in memory.
    void put(std::size_t offset, std::size_t length, std::string_view text) {
        for (std::size_t i = 0; i < length; ++i) {
            const char character = i < text.size() ? text[i] : ' ';
            bytes_[offset + (i ^ 1U)] = static_cast<std::uint8_t>(character);
        }
    }

    std::array<std::uint8_t, kAtaIdentifyBytes> bytes_{};
};

TEST(AtaIdentifyRequest, IsIdentifyDeviceForTheFirstDevice) {
    const std::array<std::uint8_t, 32> expected = {0, 0, 0, 0, 0x00, 0x01, 0x01, 0x00, 0x00, 0xA0, 0xEC, 0, 0x04};
    EXPECT_EQ(ataIdentifyRequest(4), expected);
}

TEST(AtaIdentifyRequest, AnOddDriveNumberSelectsTheSecondDevice) {
    const std::array<std::uint8_t, 32> expected = {0, 0, 0, 0, 0x00, 0x01, 0x01, 0x00, 0x00, 0xB0, 0xEC, 0, 0x13};
    EXPECT_EQ(ataIdentifyRequest(19), expected);
}

TEST(ApplyAtaIdentify, TakesSwappedAndTrimmedTexts) {
    DriveRecord record;
    applyAtaIdentify(record, IdentifyBlock("  ST1000DM010-2EP102", "            Z9AB12CD", "CC43").bytes());
    EXPECT_EQ(record.model.view(), "ST1000DM010-2EP102");
    EXPECT_EQ(record.serialNumber.view(), "Z9AB12CD");
    EXPECT_EQ(record.firmware.view(), "CC43");
}

TEST(ApplyAtaIdentify, KeepsTheSerialNumberAsTheDrivesOwn) {
    DriveRecord record;
    record.serialNumber.assign("LONGER THAN THE TWENTY BYTES");
    applyAtaIdentify(record, IdentifyBlock("M", "            Z9AB12CD", "CC43").bytes());
    EXPECT_EQ(record.device.identifySerial, "Z9AB12CD") << "without the tail of what stood in the record";
    applyAtaIdentify(record, IdentifyBlock("M", "", "CC43").bytes());
    EXPECT_EQ(record.device.identifySerial, "");
    applyAtaIdentify(record, {});
    EXPECT_EQ(record.device.identifySerial, "");
}

TEST(ApplyAtaIdentify, TakesTextsThatFillTheirWordsToTheLastCharacter) {
    DriveRecord record;
    applyAtaIdentify(record, IdentifyBlock(std::string(39, 'M') + "m", std::string(19, 'S') + "s", "1234567f").bytes());
    EXPECT_EQ(record.model.view(), std::string(39, 'M') + "m");
    EXPECT_EQ(record.serialNumber.view(), std::string(19, 'S') + "s");
    EXPECT_EQ(record.firmware.view(), "1234567f");
}

TEST(ApplyAtaIdentify, ALongerEarlierTextKeepsItsTail) {
    DriveRecord record;
    record.firmware.assign("Not Available");
    record.serialNumber.assign("12345678901234567890-TAIL");
    applyAtaIdentify(record, IdentifyBlock("MODEL", "SERIAL", "FW01").bytes());
    EXPECT_EQ(record.firmware.view(), "FW01    lable");
    EXPECT_EQ(record.serialNumber.view(), "SERIAL              -TAIL");
}

TEST(ApplyAtaIdentify, AnEarlierTextOfTheSameLengthOrShorterIsGone) {
    DriveRecord record;
    record.serialNumber.assign("Not Available");
    applyAtaIdentify(record, IdentifyBlock("MODEL", "WD-WCC7K0000001", "FW01").bytes());
    EXPECT_EQ(record.serialNumber.view(), "WD-WCC7K0000001");
}

TEST(ApplyAtaIdentify, TextsOfNothingButBlanksBecomeOneBlank) {
    DriveRecord record;
    applyAtaIdentify(record, IdentifyBlock("", "", "").bytes());
    EXPECT_EQ(record.model.view(), " ");
    EXPECT_EQ(record.serialNumber.view(), " ");
    EXPECT_EQ(record.firmware.view(), " ");
}

TEST(ApplyAtaIdentify, ATextEndsAtItsFirstNul) {
    DriveRecord record;
    record.firmware.assign("Not Available");
    applyAtaIdentify(record, IdentifyBlock("MODEL", "SERIAL", std::string_view("FW\0\0\0\0\0\0", 8)).bytes());
    EXPECT_EQ(record.firmware.view(), "FW");
}

TEST(ApplyAtaIdentify, AShortBlockReadsAsZero) {
    DriveRecord record;
    applyAtaIdentify(record, IdentifyBlock("MODEL-TEXT", "SERIAL", "FW01").bytes().first(60));
    EXPECT_EQ(record.model.view(), "MODEL-");
    EXPECT_EQ(record.serialNumber.view(), "SERIAL");
    applyAtaIdentify(record, {});
    EXPECT_EQ(record.model.view(), "");
    EXPECT_EQ(record.serialNumber.view(), "");
    EXPECT_EQ(record.firmware.view(), "");
}

} // namespace
} // namespace torvane
