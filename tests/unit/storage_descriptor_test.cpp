#include "discovery/storage_descriptor.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

constexpr std::size_t kVendorOffset = 12;
constexpr std::size_t kProductOffset = 16;
constexpr std::size_t kRevisionOffset = 20;
constexpr std::size_t kSerialOffset = 24;
constexpr std::size_t kBusTypeOffset = 28;
constexpr std::size_t kFirstTextOffset = 40;

/// A STORAGE_DEVICE_DESCRIPTOR as a driver would return it: texts one behind the other, behind the fixed part.
class Descriptor {
  public:
    explicit Descriptor(std::uint32_t busType) : bytes_(kFirstTextOffset) { setWord(kBusTypeOffset, busType); }

    Descriptor& setWord(std::size_t offset, std::uint32_t value) {
        storeLe(std::span(bytes_), offset, value);
        return *this;
    }
    Descriptor& text(std::size_t offsetField, std::string_view text) {
        setWord(offsetField, static_cast<std::uint32_t>(bytes_.size()));
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.push_back(0);
        return *this;
    }

    [[nodiscard]] ByteView bytes() const { return bytes_; }
    [[nodiscard]] ByteView cutBy(std::size_t count) const { return ByteView(bytes_).first(bytes_.size() - count); }

  private:
    std::vector<std::uint8_t> bytes_;
};

DriveRecord recordOf(ByteView descriptor) {
    DriveRecord record;
    applyStorageDevice(record, parseStorageDeviceDescriptor(descriptor));
    return record;
}

std::string serialOf(std::string_view text) {
    return std::string(recordOf(Descriptor(11).text(kSerialOffset, text).bytes()).serialNumber.view());
}

TEST(StorageDescriptor, EveryFieldIsTakenFromItsPlace) {
    const DriveRecord record = recordOf(Descriptor(7)
                                            .text(kVendorOffset, "JMicron ")
                                            .text(kProductOffset, "Generic")
                                            .text(kRevisionOffset, "0508")
                                            .text(kSerialOffset, "DD564198838F0")
                                            .bytes());
    EXPECT_EQ(record.busType, 7);
    EXPECT_EQ(record.busText.view(), "USB");
    EXPECT_EQ(record.vendor.view(), "JMicron ");
    EXPECT_EQ(record.product.view(), "Generic");
    EXPECT_EQ(record.firmware.view(), "0508");
    EXPECT_EQ(record.serialNumber.view(), "DD564198838F0");
}

TEST(StorageDescriptor, WhatTheDeviceToldIsKeptAsItIs) {
    const DriveRecord record =
        recordOf(Descriptor(7).text(kVendorOffset, "JMicron ").text(kSerialOffset, "  %d\x02 ").bytes());
    ASSERT_TRUE(record.device.descriptor);
    EXPECT_EQ(record.device.descriptor->vendor, "JMicron ");
    EXPECT_EQ(record.device.descriptor->serialNumber, "  %d\x02 ");
    EXPECT_EQ(record.device.descriptor->product, std::nullopt);
}

TEST(StorageDescriptor, AnOffsetOfZeroReadsNotAvailable) {
    const DriveRecord record = recordOf(Descriptor(11).bytes());
    EXPECT_EQ(record.vendor.view(), "Not Available");
    EXPECT_EQ(record.product.view(), "Not Available");
    EXPECT_EQ(record.firmware.view(), "Not Available");
    EXPECT_EQ(record.serialNumber.view(), "Not Available");
}

TEST(StorageDescriptor, AnOffsetOutsideWhatTheDeviceReturnedReadsNotAvailable) {
    for (const std::uint32_t offset :
         {static_cast<std::uint32_t>(kFirstTextOffset), 551U, 70000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        const DriveRecord record = recordOf(Descriptor(11)
                                                .setWord(kVendorOffset, offset)
                                                .setWord(kProductOffset, offset)
                                                .setWord(kRevisionOffset, offset)
                                                .setWord(kSerialOffset, offset)
                                                .bytes());
        EXPECT_EQ(record.vendor.view(), "Not Available") << offset;
        EXPECT_EQ(record.product.view(), "Not Available") << offset;
        EXPECT_EQ(record.firmware.view(), "Not Available") << offset;
        EXPECT_EQ(record.serialNumber.view(), "Not Available") << offset;
    }
}

TEST(StorageDescriptor, ATextWithoutATerminatorEndsWhereTheDevicesAnswerEnds) {
    const Descriptor descriptor = Descriptor(11).text(kProductOffset, "ABCDEF");
    EXPECT_EQ(recordOf(descriptor.cutBy(1)).product.view(), "ABCDEF");
    EXPECT_EQ(recordOf(descriptor.cutBy(4)).product.view(), "ABC");
    EXPECT_EQ(recordOf(descriptor.cutBy(7)).product.view(), "Not Available");
}

TEST(StorageDescriptor, ATextThatIsPresentButEmptyStaysEmpty) {
    const DriveRecord record = recordOf(Descriptor(11).text(kVendorOffset, "").text(kSerialOffset, "").bytes());
    EXPECT_EQ(record.vendor.view(), "");
    EXPECT_EQ(record.serialNumber.view(), "");
}

TEST(StorageDescriptor, AnAnswerTooShortForTheBusTypeReadsAsBusZero) {
    const Descriptor descriptor(11);
    EXPECT_EQ(recordOf(descriptor.bytes().first(28)).busType, 0);
    EXPECT_EQ(recordOf(descriptor.bytes().first(28)).busText.view(), "Unknown");
    EXPECT_EQ(recordOf({}).busType, 0);
}

TEST(StorageDescriptor, ABusTypeBeyondTheTableIsUnknown) {
    EXPECT_EQ(recordOf(Descriptor(18).bytes()).busText.view(), "Unknown");
    EXPECT_EQ(recordOf(Descriptor(18).bytes()).busType, 18);
    EXPECT_EQ(recordOf(Descriptor(0xFFFFFFFF).bytes()).busText.view(), "Unknown");
}

TEST(StorageDescriptor, EveryTextStopsAtItsFieldsEnd) {
    const std::string longText(500, 'V');
    const DriveRecord record = recordOf(Descriptor(11)
                                            .text(kVendorOffset, longText)
                                            .text(kProductOffset, longText)
                                            .text(kRevisionOffset, longText)
                                            .text(kSerialOffset, longText)
                                            .bytes());
    EXPECT_EQ(record.vendor.view(), std::string(63, 'V'));
    EXPECT_EQ(record.product.view(), std::string(63, 'V'));
    EXPECT_EQ(record.firmware.view(), std::string(31, 'V'));
    EXPECT_EQ(record.serialNumber.view(), std::string(127, 'V'));
}

TEST(StorageDescriptor, PercentSignsInEveryTextAreExpanded) {
    const DriveRecord record = recordOf(Descriptor(11)
                                            .text(kVendorOffset, "100%% %s%n ok")
                                            .text(kProductOffset, "%d%%")
                                            .text(kRevisionOffset, "1%x2")
                                            .text(kSerialOffset, "S%%N%5d")
                                            .bytes());
    EXPECT_EQ(record.vendor.view(), "100%  ok");
    EXPECT_EQ(record.product.view(), "%");
    EXPECT_EQ(record.firmware.view(), "12");
    EXPECT_EQ(record.serialNumber.view(), "S%N");
}

TEST(StorageDescriptor, SerialWithTwoLeadingAndTwoTrailingBlanksLosesAllFour) {
    EXPECT_EQ(serialOf("  WD-1234  "), "WD-1234");
}

TEST(StorageDescriptor, SerialOfOneBlankStaysOneBlank) {
    EXPECT_EQ(serialOf(" "), " ");
}

TEST(StorageDescriptor, SerialWithAnUnprintableCharacterReadsNotAvailable) {
    EXPECT_EQ(serialOf("WD\x01"
                       "1234"),
              "Not Available");
    EXPECT_EQ(serialOf("WD-1234\x7F"), "Not Available");
    EXPECT_EQ(serialOf("\xC4\xD6\xDC"), "Not Available");
}

TEST(StorageDescriptor, OnlyTheSerialNumberMustBePrintable) {
    EXPECT_EQ(recordOf(Descriptor(11).text(kVendorOffset, "\x01\x02").bytes()).vendor.view(), "\x01\x02");
}

TEST(StorageDescriptor, OnlyTheSerialNumberIsTrimmed) {
    EXPECT_EQ(recordOf(Descriptor(11).text(kProductOffset, "  disk  ").bytes()).product.view(), "  disk  ");
}

TEST(StorageDescriptor, SerialIsCutAtItsFieldBeforeItIsTrimmed) {
    EXPECT_EQ(serialOf("  " + std::string(200, 'S')), std::string(125, 'S'));
}

TEST(AdapterDescriptor, BusVersionIsReadAtTheOddOffsetsOfAPackedLayout) {
    std::vector<std::uint8_t> bytes(32);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    const BusVersion version = parseStorageAdapterDescriptor(bytes);
    EXPECT_EQ(version.major, 25 + 26 * 256);
    EXPECT_EQ(version.minor, 27 + 28 * 256);
}

TEST(AdapterDescriptor, BusVersionIsUnsigned) {
    const std::vector<std::uint8_t> bytes(32, 0xFF);
    EXPECT_EQ(parseStorageAdapterDescriptor(bytes).major, 65535);
    EXPECT_EQ(parseStorageAdapterDescriptor(bytes).minor, 65535);
}

TEST(AdapterDescriptor, AShortAnswerReadsAsZero) {
    const std::vector<std::uint8_t> bytes(25, 0xFF);
    EXPECT_EQ(parseStorageAdapterDescriptor(bytes).major, 0);
    EXPECT_EQ(parseStorageAdapterDescriptor(bytes).minor, 0);
}

DriveRecord recordOfSize(std::int32_t bytesPerSector, std::int64_t sizeBytes) {
    DriveRecord record;
    applyDiskGeometry(record, {.bytesPerSector = bytesPerSector, .sizeBytes = sizeBytes});
    return record;
}

TEST(DiskGeometry, SectorSizeAndDiskSizeAreTakenFromTheirPlaces) {
    std::vector<std::uint8_t> bytes(33);
    storeLe(std::span(bytes), 20, std::uint32_t{4096});
    storeLe(std::span(bytes), 24, std::uint64_t{0x0123456789ABCDEF});
    const DiskGeometry geometry = parseDiskGeometry(bytes);
    EXPECT_EQ(geometry.bytesPerSector, 4096);
    EXPECT_EQ(geometry.sizeBytes, 0x0123456789ABCDEF);
}

TEST(DiskGeometry, AShortAnswerReadsAsZero) {
    const std::vector<std::uint8_t> bytes(20, 0xFF);
    EXPECT_EQ(parseDiskGeometry(bytes).bytesPerSector, 0);
    EXPECT_EQ(parseDiskGeometry(bytes).sizeBytes, 0);
}

TEST(DiskGeometry, SizeIsKeptInThreeUnits) {
    const DriveRecord record = recordOfSize(512, 500107862016);
    EXPECT_EQ(record.bytesPerSector, 512);
    EXPECT_EQ(record.sizeBytes, 500107862016);
    EXPECT_EQ(record.sizeSectors, 976773168);
    EXPECT_DOUBLE_EQ(record.sizeGigabytes, 500107862016 / 1073741824.0);
}

TEST(DiskGeometry, ADriveOfLargeSectorsStillCountsUnitsOf512Bytes) {
    const DriveRecord record = recordOfSize(4096, 4096000);
    EXPECT_EQ(record.bytesPerSector, 4096);
    EXPECT_EQ(record.sizeSectors, 8000);
}

TEST(DiskGeometry, AnIncompleteLastSectorIsNotCounted) {
    EXPECT_EQ(recordOfSize(512, 1023).sizeSectors, 1);
}

TEST(DiskGeometry, AbsurdSizesAreCarriedWithoutHarm) {
    EXPECT_EQ(recordOfSize(512, -512).sizeSectors, -1);
    EXPECT_EQ(recordOfSize(0, std::numeric_limits<std::int64_t>::max()).sizeSectors,
              std::numeric_limits<std::int64_t>::max() / 512);
}

} // namespace
} // namespace torvane
