#include "workbench/description/drive_description.h"

#include "workbench/description/description_parts.h"

#include <algorithm>
#include <array>

namespace torvane::bench {
namespace {

void readBus(ObjectReader& reader, std::uint32_t& bus) {
    reader.require("bus");
    const Json* value = reader.raw("bus");
    if (value != nullptr && value->is_string()) {
        std::size_t index = 0;
        reader.choice("bus", kBusNames, index);
        bus = static_cast<std::uint32_t>(index);
    } else {
        reader.number("bus", bus, 0, 255);
    }
}

void readSectorSize(ObjectReader& reader, const std::string& key, std::uint32_t& bytes) {
    const Json* value = reader.raw(key);
    if (value == nullptr) {
        return;
    }
    if (*value != 512 && *value != 4096) {
        reader.fail(key, "expected 512 or 4096, got " + shown(*value));
        return;
    }
    bytes = value->get<std::uint32_t>();
}

void addRoad(ObjectReader& reader, const Json& name, Roads& roads) {
    struct Named {
        std::string_view name;
        bool Roads::*road;
    };
    static constexpr std::array kNamed = {
        Named{"ata", &Roads::ata},
        Named{"sat", &Roads::sat},
        Named{"scsi", &Roads::scsi},
        Named{"nvme-query", &Roads::nvmeQuery},
        Named{"raid-miniport", &Roads::raidMiniport},
        Named{"usb-bridge", &Roads::usbBridge},
    };
    for (const Named& named : kNamed) {
        if (name == named.name) {
            roads.*named.road = true;
            return;
        }
    }
    if (name != "none") {
        reader.fail("road", "expected one of \"ata\" \"sat\" \"scsi\" \"nvme-query\" \"raid-miniport\" \"usb-bridge\" "
                            "\"none\", got " +
                                shown(name));
    }
}

void readRoads(ObjectReader& reader, Roads& roads) {
    const Json* value = reader.raw("road");
    if (value == nullptr) {
        return;
    }
    if (value->is_array()) {
        for (const Json& name : *value) {
            addRoad(reader, name, roads);
        }
    } else {
        addRoad(reader, *value, roads);
    }
}

void readIdentity(ObjectReader& reader, Identity& identity) {
    reader.text("vendor", identity.vendor, 4096);
    reader.text("product", identity.product, 4096);
    reader.text("revision", identity.revision, 4096);
    reader.text("serial", identity.serial, 4096);
}

void readDescriptor(ObjectReader& reader, DescriptorOverrides& descriptor) {
    reader.number("vendorOffset", descriptor.vendorOffset);
    reader.number("productOffset", descriptor.productOffset);
    reader.number("revisionOffset", descriptor.revisionOffset);
    reader.number("serialOffset", descriptor.serialOffset);
    reader.number("returnedLength", descriptor.returnedLength);
    reader.number("size", descriptor.size);
    reader.number("busType", descriptor.busType);
}

void readAdapter(ObjectReader& reader, AdapterDescription& adapter) {
    reader.number("busMajorVersion", adapter.busMajorVersion);
    reader.number("busMinorVersion", adapter.busMinorVersion);
    std::uint64_t maximum = adapter.maximumTransfer;
    reader.size("maximumTransfer", maximum);
    if (maximum > 0xFFFFFFFFULL) {
        reader.fail("maximumTransfer", "expected less than 4 GiB");
    }
    adapter.maximumTransfer = static_cast<std::uint32_t>(maximum);
}

void readBacking(ObjectReader& reader, Backing& backing) {
    static constexpr std::array<std::string_view, 3> kPatterns = {"zero", "sector-number", "noise"};
    if (reader.has("file") && reader.has("pattern")) {
        reader.fail("pattern", "stands beside \"file\"; only one of them can hold the content");
    }
    reader.text("file", backing.file, 100);
    // A bare name: the file never lies outside the bench folder.
    if (reader.has("file") && (backing.file.empty() || backing.file.find_first_of("/\\:*?\"<>|") != std::string::npos ||
                               backing.file.front() == '.')) {
        reader.fail("file", "expected a bare file name");
    }
    if (reader.has("pattern")) {
        std::size_t index = 0;
        reader.choice("pattern", kPatterns, index);
        backing.kind = static_cast<BackingKind>(index + 1);
    }
    if (reader.has("seed") && backing.kind != BackingKind::kNoise) {
        reader.fail("seed", "serves the pattern \"noise\" only");
    }
    reader.number("seed", backing.seed);
    if (reader.has("forgetsWrites") && backing.kind == BackingKind::kFile) {
        reader.fail("forgetsWrites", "serves patterns only");
    }
    reader.boolean("forgetsWrites", backing.forgetsWrites);
}

// Characters that IDENTIFY DEVICE and Identify Controller have room for.
constexpr std::size_t kModelLength = 40;
constexpr std::size_t kSerialLength = 20;
constexpr std::size_t kFirmwareLength = 8;

std::string cut(const std::optional<std::string>& text, std::size_t length) {
    return text.value_or("").substr(0, length);
}

// What `ata` and `nvme` say when they are not described: the same device that the descriptor tells of.
void deriveDeviceTexts(DriveDescription& drive) {
    drive.ata.model = drive.nvme.model = cut(drive.identity.product, kModelLength);
    drive.ata.serial = drive.nvme.serial = cut(drive.identity.serial, kSerialLength);
    drive.ata.firmware = drive.nvme.firmware = cut(drive.identity.revision, kFirmwareLength);
    drive.nvme.namespaceSectors = drive.size / drive.sectorSize;
}

/// Behind the serial numbers of another device of the same make.
constexpr const char* kSwapped = "-SWAPPED";

// Another medium in the same device, or another device of the same make.
void readSwap(ObjectReader& reader, DriveDescription& drive) {
    drive.swap.identity = drive.identity;
    if (!drive.removable && !tellsEui64(drive)) {
        drive.swap.identity.serial = drive.identity.serial.value_or("") + kSwapped;
    }
    drive.swap.backing.file = "drive" + std::to_string(drive.number) + "-swapped.img";
    drive.swap.keepsHandles = drive.removable;
    reader.object("swap", [&](ObjectReader& object) {
        object.object("identity", [&](ObjectReader& identity) {
            drive.swap.identity = {};
            readIdentity(identity, drive.swap.identity);
        });
        object.object("backing", [&](ObjectReader& backing) { readBacking(backing, drive.swap.backing); });
        object.boolean("keepsHandles", drive.swap.keepsHandles);
    });
}

// Of what takes the drive's place; `own` is the drive's.
std::string serialBehindRoad(const DriveDescription& drive, const std::string& own) {
    const std::optional<std::string>& serial = drive.swap.identity.serial;
    const bool sameMake = serial == drive.identity.serial.value_or("") + kSwapped;
    return cut(sameMake ? own + kSwapped : serial, kSerialLength);
}

// "0225_38A1_B2C3_D4E5.": as Windows tells an EUI-64. The number follows from the text (FNV-1a), its first byte is that
// of numbers which no maker has.
std::string eui64Text(std::string_view text) {
    std::uint64_t number = 0xCBF29CE484222325ULL;
    for (const char c : text) {
        number = (number ^ static_cast<std::uint8_t>(c)) * 0x100000001B3ULL;
    }
    number = (number & 0x00FFFFFFFFFFFFFFULL) | 0x0200000000000000ULL;
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string eui;
    for (int digit = 0; digit < 16; ++digit) {
        eui += digit > 0 && digit % 4 == 0 ? "_" : "";
        eui += kDigits[(number >> (60 - 4 * digit)) & 0xFU];
    }
    return eui + ".";
}

void readShape(ObjectReader& reader, DriveDescription& drive) {
    reader.require("number");
    reader.number("number", drive.number, 0, 63);
    readBus(reader, drive.bus);
    readSectorSize(reader, "sectorSize", drive.sectorSize);
    drive.physicalSectorSize = drive.sectorSize;
    readSectorSize(reader, "physicalSectorSize", drive.physicalSectorSize);
    if (drive.physicalSectorSize < drive.sectorSize) {
        reader.fail("physicalSectorSize", "smaller than sectorSize");
    }
    reader.require("size");
    reader.size("size", drive.size);
    if (drive.size % drive.sectorSize != 0) {
        reader.fail("size", "expected whole sectors of " + std::to_string(drive.sectorSize) + " bytes, got " +
                                std::to_string(drive.size));
    }
}

} // namespace

DriveDescription readDrive(ObjectReader& reader, std::vector<VolumeDescription>& volumes) {
    DriveDescription drive;
    drive.fileName = reader.file().name;
    readShape(reader, drive);
    readRoads(reader, drive.roads);
    reader.object("identity", [&](ObjectReader& object) { readIdentity(object, drive.identity); });
    reader.object("descriptor", [&](ObjectReader& object) { readDescriptor(object, drive.descriptor); });
    reader.object("adapter", [&](ObjectReader& object) { readAdapter(object, drive.adapter); });
    reader.boolean("removable", drive.removable);
    reader.boolean("empty", drive.empty);
    if (drive.empty && !drive.removable) {
        reader.fail("empty", "only a removable medium can be missing");
    }
    reader.boolean("readOnly", drive.readOnly);
    drive.backing.file = "drive" + std::to_string(drive.number) + ".img";
    reader.object("backing", [&](ObjectReader& object) { readBacking(object, drive.backing); });
    drive.scsiPort = drive.number;
    reader.number("scsiPort", drive.scsiPort, 0, 255);
    reader.boolean("strictPassThrough", drive.strictPassThrough);
    reader.boolean("miniportIgnores", drive.miniportIgnores);
    deriveDeviceTexts(drive);
    reader.object("ata", [&](ObjectReader& object) { readAta(object, drive.ata); });
    reader.object("nvme", [&](ObjectReader& object) { readNvme(object, drive.nvme); });
    readSwap(reader, drive);
    reader.list("volumes", [&](ObjectReader& item) { volumes.push_back(readVolume(item, drive.number)); });
    reader.object("faults", [&](ObjectReader& object) { readFaults(object, drive, drive.faults); });
    reader.finish();
    return drive;
}

bool tellsEui64(const DriveDescription& drive) {
    constexpr std::uint32_t kBusNvme = 17;
    return drive.bus == kBusNvme && !drive.identity.serial && !drive.nvme.serial.empty();
}

std::optional<std::string> descriptorSerial(const DriveDescription& drive) {
    return tellsEui64(drive) ? eui64Text(drive.nvme.serial) : drive.identity.serial;
}

DriveDescription swappedDrive(const DriveDescription& drive) {
    DriveDescription other = drive;
    other.identity = drive.swap.identity;
    other.backing = drive.swap.backing;
    other.faults = {};
    other.empty = false;
    if (other.identity.product != drive.identity.product) {
        other.ata.model = other.nvme.model = cut(other.identity.product, kModelLength);
    }
    if (tellsEui64(drive) && !other.identity.serial) {
        other.nvme.serial = cut(drive.nvme.serial + (drive.removable ? "" : kSwapped), kSerialLength);
    } else if (other.identity.serial != drive.identity.serial) {
        other.ata.serial = serialBehindRoad(drive, drive.ata.serial);
        other.nvme.serial = serialBehindRoad(drive, drive.nvme.serial);
    }
    if (other.identity.revision != drive.identity.revision) {
        other.ata.firmware = other.nvme.firmware = cut(other.identity.revision, kFirmwareLength);
    }
    return other;
}

} // namespace torvane::bench
