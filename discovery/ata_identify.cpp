#include "discovery/ata_identify.h"

#include "discovery/device_text.h"
#include "records/drive_record.h"

#include <algorithm>
#include <span>
#include <string>

namespace torvane {

namespace {

// IDEREGS within SENDCMDINPARAMS, behind the 32-bit cBufferSize; then bDriveNumber.
constexpr std::size_t kSectorCountOffset = 5;
constexpr std::size_t kSectorNumberOffset = 6;
constexpr std::size_t kDriveHeadOffset = 9;
constexpr std::size_t kCommandOffset = 10;
constexpr std::size_t kDriveNumberOffset = 12;

constexpr std::uint8_t kDriveHeadFirstDevice = 0xA0;
constexpr std::uint8_t kDriveHeadSecondDevice = 0x10;
constexpr std::uint8_t kIdentifyDevice = 0xEC;

// Of the identify block: words 10-19.
constexpr std::size_t kSerialOffset = 20;
constexpr std::size_t kSerialBytes = 20;

template <std::size_t Width>
void trimInPlace(FixedText<Width>& text) {
    text.assign(trimBlanks(std::string(text.view())));
}

// No terminator is added: a longer text that stood in the field keeps its tail.
template <std::size_t Width>
void overwriteStart(FixedText<Width>& field, ByteView block, std::size_t offset, std::size_t length) {
    const std::span<char> target = field.writableBytes().first(length);
    for (std::size_t i = 0; i < length; ++i) {
        target[i] = static_cast<char>(loadLe<std::uint8_t>(block, offset + i));
    }
    swapBytePairs(target);
    trimInPlace(field);
}

// The field alone, which may be filled with blanks or NUL bytes.
std::string serialOf(ByteView block) {
    FixedText<kSerialBytes + 1> serial;
    overwriteStart(serial, block, kSerialOffset, kSerialBytes);
    return serial.view() == " " ? std::string() : std::string(serial.view());
}

} // namespace

std::array<std::uint8_t, kAtaCommandBytes> ataIdentifyRequest(std::int32_t identifyDriveNumber) {
    std::array<std::uint8_t, kAtaCommandBytes> request{};
    request[kSectorCountOffset] = 1;
    request[kSectorNumberOffset] = 1;
    request[kDriveHeadOffset] = kDriveHeadFirstDevice;
    if (identifyDriveNumber % 2 != 0) {
        request[kDriveHeadOffset] |= kDriveHeadSecondDevice;
    }
    request[kCommandOffset] = kIdentifyDevice;
    request[kDriveNumberOffset] = static_cast<std::uint8_t>(identifyDriveNumber);
    return request;
}

void applyAtaIdentify(DriveRecord& record, ByteView identifyBlock) {
    overwriteStart(record.model, identifyBlock, 54, 40);
    overwriteStart(record.serialNumber, identifyBlock, kSerialOffset, kSerialBytes);
    record.device.identifySerial = serialOf(identifyBlock);
    overwriteStart(record.firmware, identifyBlock, 46, 8);
}

} // namespace torvane
