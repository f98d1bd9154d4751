#include "workbench/devices/scsi_basics.h"

#include "workbench/devices/ata_identify.h"

#include <algorithm>
#include <string_view>

namespace torvane::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kTestUnitReady = 0x00;
constexpr std::uint8_t kRequestSense = 0x03;
constexpr std::uint8_t kInquiry = 0x12;
constexpr std::uint8_t kModeSense6 = 0x1A;
constexpr std::uint8_t kReadCapacity10 = 0x25;
constexpr std::uint8_t kModeSense10 = 0x5A;
constexpr std::uint8_t kServiceActionIn16 = 0x9E;
constexpr std::uint8_t kReportLuns = 0xA0;

void setText(Bytes& bytes, std::size_t offset, std::size_t width, std::string_view text) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes[offset + i] = static_cast<std::uint8_t>(i < text.size() ? text[i] : ' ');
    }
}

// SCSI/ATA Translation names every ATA device's vendor "ATA".
std::string vendorText(const DriveDescription& drive) {
    return drive.roads.translatesAta() ? "ATA" : drive.identity.vendor.value_or("");
}

std::string serialText(const DriveDescription& drive) {
    if (drive.roads.translatesAta()) {
        return drive.ata.serial;
    }
    return tellsEui64(drive) ? drive.nvme.serial : drive.identity.serial.value_or("");
}

Bytes standardInquiry(const DriveDescription& drive) {
    Bytes data(36);
    data[1] = drive.removable ? 0x80 : 0;
    data[2] = 0x06; // SPC-4
    data[3] = 0x02; // response data format
    data[4] = static_cast<std::uint8_t>(data.size() - 5);
    data[7] = 0x02; // command queueing
    const bool translated = drive.roads.translatesAta();
    setText(data, 8, 8, vendorText(drive));
    setText(data, 16, 16, translated ? drive.ata.model : drive.identity.product.value_or(""));
    setText(data, 32, 4, translated ? drive.ata.firmware : drive.identity.revision.value_or(""));
    return data;
}

Bytes vitalPage(std::uint8_t code, const Bytes& content) {
    Bytes data(4 + content.size());
    data[1] = code;
    storeBe(data, 2, 2, content.size());
    std::copy(content.begin(), content.end(), data.begin() + 4);
    return data;
}

// ATA Information page: the identify data as the translation layer saw it.
Bytes ataInformation(const DriveDescription& drive) {
    Bytes content(568);
    setText(content, 4, 8, "BENCH");
    setText(content, 12, 16, "SAT");
    setText(content, 28, 4, "1");
    content[52] = kAtaIdentifyDevice;
    const AtaBlock identify = identifyBlock(drive, drive.ata.smart.enabled);
    std::copy(identify.begin(), identify.end(), content.begin() + 56);
    return content;
}

ScsiReply inquiry(const DriveDescription& drive, std::span<const std::uint8_t> cdb) {
    ScsiReply reply;
    if ((cdb[1] & 0x01) == 0) {
        reply.data = standardInquiry(drive);
        return reply;
    }
    const std::string serial = serialText(drive);
    const bool translated = drive.roads.translatesAta();
    switch (cdb[2]) {
    case 0x00:
        reply.data = vitalPage(0x00, translated ? Bytes{0x00, 0x80, 0x89} : Bytes{0x00, 0x80});
        return reply;
    case 0x80:
        reply.data = vitalPage(0x80, Bytes(serial.begin(), serial.end()));
        return reply;
    case 0x89:
        if (translated) {
            reply.data = vitalPage(0x89, ataInformation(drive));
            return reply;
        }
        break;
    default:
        break;
    }
    return checkCondition(kSenseIllegalRequest, kInvalidFieldInCdb, 0);
}

// The last block's address cannot tell of none at all.
ScsiReply noMedium() {
    return checkCondition(kSenseNotReady, kMediumNotPresent, 0);
}

ScsiReply readCapacity10(const DriveDescription& drive) {
    if (drive.size == 0) {
        return noMedium();
    }
    ScsiReply reply;
    reply.data.resize(8);
    const std::uint64_t last = drive.size / drive.sectorSize - 1;
    storeBe(reply.data, 0, 4, std::min<std::uint64_t>(last, 0xFFFFFFFF)); // all ones: ask with READ CAPACITY (16)
    storeBe(reply.data, 4, 4, drive.sectorSize);
    return reply;
}

ScsiReply serviceActionIn(const DriveDescription& drive, std::span<const std::uint8_t> cdb) {
    constexpr std::uint8_t kReadCapacity16 = 0x10;
    if ((cdb[1] & 0x1F) != kReadCapacity16) {
        return checkCondition(kSenseIllegalRequest, kInvalidFieldInCdb, 0);
    }
    if (drive.size == 0) {
        return noMedium();
    }
    ScsiReply reply;
    reply.data.resize(32);
    storeBe(reply.data, 0, 8, drive.size / drive.sectorSize - 1);
    storeBe(reply.data, 8, 4, drive.sectorSize);
    reply.data[13] = drive.physicalSectorSize > drive.sectorSize ? 3 : 0; // 2^3 logical blocks in a physical one
    return reply;
}

ScsiReply modeSense(std::span<const std::uint8_t> cdb) {
    const std::uint8_t pageCode = cdb[2] & 0x3F;
    if (pageCode != 0x3F && pageCode != 0x08) {
        return checkCondition(kSenseIllegalRequest, kInvalidFieldInCdb, 0);
    }
    Bytes caching(20);
    caching[0] = 0x08;
    caching[1] = 18;
    caching[2] = 0x04; // write cache enabled
    ScsiReply reply;
    const bool six = cdb[0] == kModeSense6;
    const std::size_t header = six ? 4 : 8;
    reply.data.resize(header + caching.size());
    std::copy(caching.begin(), caching.end(), reply.data.begin() + static_cast<std::ptrdiff_t>(header));
    storeBe(reply.data, 0, six ? 1 : 2, reply.data.size() - (six ? 1 : 2));
    return reply;
}

ScsiReply withName(ScsiReply reply, std::string_view name) {
    reply.commandName = name;
    return reply;
}

} // namespace

void storeBe(std::span<std::uint8_t> bytes, std::size_t offset, std::size_t width, std::uint64_t value) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * (width - 1 - i)));
    }
}

ScsiReply checkCondition(std::uint8_t key, std::uint8_t asc, std::uint8_t ascq) {
    ScsiReply reply;
    reply.status = kScsiCheckCondition;
    reply.sense.resize(18);
    reply.sense[0] = 0x70;
    reply.sense[2] = key;
    reply.sense[7] = 10;
    reply.sense[12] = asc;
    reply.sense[13] = ascq;
    return reply;
}

ScsiReply executeBasic(const DriveDescription& drive, std::span<const std::uint8_t> cdb) {
    switch (cdb[0]) {
    case kTestUnitReady:
        return withName({}, "TEST_UNIT_READY");
    case kRequestSense: {
        ScsiReply reply;
        reply.data = checkCondition(0, 0, 0).sense; // no sense
        return withName(reply, "REQUEST_SENSE");
    }
    case kInquiry:
        return withName(inquiry(drive, cdb), "INQUIRY");
    case kModeSense6:
    case kModeSense10:
        return withName(modeSense(cdb), "MODE_SENSE");
    case kReadCapacity10:
        return withName(readCapacity10(drive), "READ_CAPACITY_10");
    case kServiceActionIn16:
        return withName(serviceActionIn(drive, cdb), "READ_CAPACITY_16");
    case kReportLuns: {
        ScsiReply reply;
        reply.data.resize(16);
        storeBe(reply.data, 0, 4, 8); // one logical unit, number 0
        return withName(reply, "REPORT_LUNS");
    }
    default: {
        static constexpr std::string_view kDigits = "0123456789abcdef";
        return withName(checkCondition(kSenseIllegalRequest, kInvalidOperationCode, 0),
                        std::string("scsi:0x") + kDigits[cdb[0] >> 4U] + kDigits[cdb[0] & 0x0FU]);
    }
    }
}

} // namespace torvane::bench
