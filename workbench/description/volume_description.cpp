#include "workbench/description/volume_description.h"

#include "workbench/description/description_parts.h"

#include <array>

namespace torvane::bench {
namespace {

void readLetter(ObjectReader& reader, char& letter) {
    std::string text;
    reader.require("letter");
    reader.text("letter", text);
    if (!reader.has("letter")) {
        return;
    }
    if (text.size() != 1 || text[0] < 'A' || text[0] > 'Z') {
        reader.fail("letter", "expected one letter from \"A\" to \"Z\"");
        return;
    }
    letter = text[0];
}

void readSerial(ObjectReader& reader, std::uint32_t& serial) {
    std::string text = "0000-0000";
    reader.text("serial", text);
    const bool shape = text.size() == 9 && text[4] == '-';
    const std::string digits = shape ? text.substr(0, 4) + text.substr(5) : std::string();
    if (!shape || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        reader.fail("serial", "expected eight hexadecimal digits as in \"1A2B-3C4D\"");
        return;
    }
    serial = static_cast<std::uint32_t>(std::stoul(digits, nullptr, 16));
}

void readAppearance(ObjectReader& reader, VolumeAppearance& appears) {
    static constexpr std::array<std::string_view, 2> kNames = {"at once", "with its table"};
    auto index = static_cast<std::size_t>(appears);
    reader.choice("appears", kNames, index);
    appears = static_cast<VolumeAppearance>(index);
}

VolumeExtent readExtent(ObjectReader& reader, std::optional<std::uint32_t> ownDisk) {
    VolumeExtent extent;
    extent.disk = ownDisk.value_or(0);
    if (!ownDisk) {
        reader.require("disk");
    }
    reader.number("disk", extent.disk);
    reader.require("offset");
    reader.size("offset", extent.offset);
    reader.require("length");
    reader.size("length", extent.length);
    return extent;
}

KeyProtector readProtector(ObjectReader& reader) {
    KeyProtector protector;
    reader.require("type");
    reader.text("type", protector.type);
    reader.text("id", protector.id);
    reader.text("password", protector.password);
    return protector;
}

void readBitLocker(ObjectReader& reader, BitLockerDescription& bitLocker) {
    static constexpr std::array<std::string_view, 3> kStates = {"off", "unlocked", "locked"};
    auto state = static_cast<std::size_t>(bitLocker.state);
    reader.choice("state", kStates, state);
    bitLocker.state = static_cast<BitLockerState>(state);
    reader.text("output", bitLocker.output);
    reader.list("protectors", [&](ObjectReader& item) { bitLocker.protectors.push_back(readProtector(item)); });
    if (bitLocker.state == BitLockerState::kOff && !bitLocker.protectors.empty()) {
        reader.fail("protectors", "a volume whose state is \"off\" has none");
    }
}

} // namespace

VolumeDescription readVolume(ObjectReader& reader, std::optional<std::uint32_t> ownDisk) {
    static constexpr std::array<std::string_view, 4> kKinds = {"fixed", "removable", "optical", "network"};
    VolumeDescription volume;
    volume.fileName = reader.file().name;
    volume.field = reader.path();
    readLetter(reader, volume.letter);
    std::size_t kind = 0;
    reader.choice("kind", kKinds, kind);
    volume.kind = static_cast<VolumeKind>(kind);
    readAppearance(reader, volume.appears);
    reader.list("extents", [&](ObjectReader& item) { volume.extents.push_back(readExtent(item, ownDisk)); });
    reader.text("label", volume.label, 32);
    reader.text("fileSystem", volume.fileSystem, 16);
    readSerial(reader, volume.serial);
    reader.size("totalSpace", volume.totalSpace);
    reader.size("freeSpace", volume.freeSpace);
    if (volume.fileSystem == "FAT" || volume.fileSystem == "FAT32") {
        volume.largestFile = 0xFFFFFFFF;
    }
    reader.size("largestFile", volume.largestFile);
    reader.object("bitLocker", [&](ObjectReader& object) { readBitLocker(object, volume.bitLocker); });
    reader.object("faults", [&](ObjectReader& object) {
        object.error("open", volume.openError);
        object.error("extents", volume.extentsError);
    });
    if ((volume.kind == VolumeKind::kOptical || volume.kind == VolumeKind::kNetwork) && !volume.extents.empty()) {
        reader.fail("extents", "an optical or network volume has none");
    }
    if (volume.appears == VolumeAppearance::kWithTable && volume.extents.empty()) {
        reader.fail("appears", "a volume without extents is in no partition table");
    }
    return volume;
}

} // namespace torvane::bench
