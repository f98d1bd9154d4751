#include "workbench/devices/ata_identify.h"

#include "base/bytes.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace torvane::bench {
namespace {

constexpr std::size_t kWord = 2; // bytes
constexpr std::uint16_t kSmartBit = 1U << 0;
constexpr std::uint16_t kSecurityBit = 1U << 1;

void setWord(AtaBlock& block, std::size_t word, std::uint16_t value) {
    storeLe<std::uint16_t>(block, kWord * word, value);
}

// Two characters for each word, the first one in the high byte, padded with blanks.
void setText(AtaBlock& block, std::size_t firstWord, std::size_t words, std::string_view text) {
    for (std::size_t i = 0; i < 2 * words; ++i) {
        const char character = i < text.size() ? text[i] : ' ';
        block[2 * firstWord + (i ^ 1U)] = static_cast<std::uint8_t>(character);
    }
}

void setTexts(AtaBlock& block, const AtaDescription& ata) {
    setText(block, 10, 10, ata.serial);
    setText(block, 23, 4, ata.firmware);
    setText(block, 27, 20, ata.model);
}

void setCapacity(AtaBlock& block, const DriveDescription& drive) {
    const std::uint64_t sectors = drive.size / drive.sectorSize;
    const auto lba28 = static_cast<std::uint32_t>(std::min<std::uint64_t>(sectors, 0x0FFFFFFF));
    storeLe<std::uint32_t>(block, kWord * 60, lba28);
    storeLe<std::uint64_t>(block, kWord * 100, sectors & 0xFFFFFFFFFFFFULL);
    // Word 106: bit 14 valid, bit 13 several logical sectors in a physical one (their power of two in bits 3:0),
    // bit 12 logical sectors longer than 256 words (their length in words 117-118).
    std::uint16_t sizes = 0x4000;
    const std::uint32_t perPhysical = drive.physicalSectorSize / drive.sectorSize;
    if (perPhysical > 1) {
        sizes = static_cast<std::uint16_t>(sizes | 0x2000U | static_cast<unsigned>(std::countr_zero(perPhysical)));
    }
    if (drive.sectorSize > 512) {
        sizes = static_cast<std::uint16_t>(sizes | 0x1000U);
        storeLe<std::uint32_t>(block, kWord * 117, drive.sectorSize / 2);
    }
    setWord(block, 106, sizes);
    setWord(block, 209, 0x4000);
}

std::uint16_t securityWord(AtaSecurity security) {
    constexpr std::uint16_t kSupported = 1;
    constexpr std::uint16_t kEnabled = 2;
    constexpr std::uint16_t kLocked = 4;
    constexpr std::uint16_t kFrozen = 8;
    switch (security) {
    case AtaSecurity::kUnsupported:
        return 0;
    case AtaSecurity::kDisabled:
        return kSupported;
    case AtaSecurity::kEnabled:
        return kSupported | kEnabled;
    case AtaSecurity::kLocked:
        return kSupported | kEnabled | kLocked;
    case AtaSecurity::kFrozen:
        return kSupported | kFrozen;
    }
    return 0;
}

// Words 82 to 87 tell what is supported, then what is enabled.
void setFeatureSets(AtaBlock& block, const AtaDescription& ata, bool smartEnabled) {
    const std::uint16_t security = securityWord(ata.security);
    const auto smart = static_cast<std::uint16_t>(ata.smart.supported ? kSmartBit : 0);
    const auto smartOn = static_cast<std::uint16_t>(ata.smart.supported && smartEnabled ? kSmartBit : 0);
    const auto secure = static_cast<std::uint16_t>((security & 1U) != 0 ? kSecurityBit : 0);
    const auto secureOn = static_cast<std::uint16_t>((security & 2U) != 0 ? kSecurityBit : 0);
    constexpr std::uint16_t kCommon = 0x7068; // NOP, buffers, look-ahead, write cache, power management
    setWord(block, 82, static_cast<std::uint16_t>(kCommon | smart | secure));
    setWord(block, 85, static_cast<std::uint16_t>(kCommon | smartOn | secureOn));
    // 48-bit addresses and both cache flushes; word 83 carries its validity in bit 14, word 86 does not.
    setWord(block, 83, 0x7400);
    setWord(block, 86, 0x3400);
    // SMART error logging and self-test, general purpose logging, world wide name.
    const auto logs =
        static_cast<std::uint16_t>((ata.smart.supported ? 0x0003 : 0) |
                                   (ata.smart.supported && ata.smart.logs ? 0x0020 : 0) | (ata.wwn != 0 ? 0x0100 : 0));
    setWord(block, 84, static_cast<std::uint16_t>(0x4000 | logs));
    setWord(block, 87, static_cast<std::uint16_t>(0x4000 | logs));
    setWord(block, 128, security);
}

void setTransfer(AtaBlock& block, const DriveDescription& drive) {
    setWord(block, 0, 0x0040);
    setWord(block, 47, 0x8001);
    setWord(block, 49, 0x2F00); // LBA, DMA, IORDY
    setWord(block, 50, 0x4000);
    setWord(block, 53, 0x0007);
    setWord(block, 63, 0x0007);
    setWord(block, 64, 0x0003);
    for (std::size_t word = 65; word <= 68; ++word) {
        setWord(block, word, 120); // cycle times, nanoseconds
    }
    setWord(block, 75, 31);     // queue depth - 1
    setWord(block, 76, 0x010E); // native queueing, generations 1 to 3
    setWord(block, 77, 0x0006); // negotiated: generation 3
    setWord(block, 80, 0x07F0); // ATA/ATAPI-4 to ACS-3
    setWord(block, 81, 0x006D); // ACS-3 revision 5
    setWord(block, 88, 0x407F);
    if (drive.ata.rotationRate == 1) {
        setWord(block, 169, 0x0001); // TRIM
    }
    setWord(block, 222, 0x107F); // serial transport, up to revision 3.1
}

void setWorldWideName(AtaBlock& block, std::uint64_t wwn) {
    for (std::size_t i = 0; i < 4; ++i) {
        setWord(block, 108 + i, static_cast<std::uint16_t>(wwn >> (48 - 16 * i)));
    }
}

} // namespace

AtaBlock identifyBlock(const DriveDescription& drive, bool smartEnabled) {
    AtaBlock block{};
    setTransfer(block, drive);
    setTexts(block, drive.ata);
    setCapacity(block, drive);
    setFeatureSets(block, drive.ata, smartEnabled);
    setWorldWideName(block, drive.ata.wwn);
    setWord(block, 168, static_cast<std::uint16_t>(drive.ata.formFactor));
    setWord(block, 217, drive.ata.rotationRate);
    setWord(block, 255, 0x00A5); // integrity word: signature, then checksum
    sealBlock(block);
    return block;
}

void sealBlock(std::span<std::uint8_t, kAtaBlock> block) {
    unsigned sum = 0;
    for (const std::uint8_t byte : block.first(kAtaBlock - 1)) {
        sum += byte;
    }
    block[kAtaBlock - 1] = static_cast<std::uint8_t>(0U - sum);
}

} // namespace torvane::bench
