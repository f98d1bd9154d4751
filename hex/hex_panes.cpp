#include "hex/hex_panes.h"

#include "base/format.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

/// No drive has larger sectors; no more memory than this is taken for one.
constexpr std::int32_t kLargestSector = 1048576;

char shownCharacter(std::byte byte) {
    const auto code = std::to_integer<unsigned char>(byte);
    return code >= 0x20 && code <= 0x7E ? static_cast<char>(code) : '.';
}

/// `addByte` appends one byte to the text; a line feed ends each row.
template <typename AddByte>
std::string inRows(std::span<const std::byte, kHexViewBytes> bytes, const AddByte& addByte) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        addByte(text, bytes[i]);
        if ((i + 1) % kHexBytesPerRow == 0) {
            text += '\n';
        }
    }
    return text;
}

constexpr const char* kDigits = "0123456789ABCDEF";

} // namespace

std::string hexPaneText(std::span<const std::byte, kHexViewBytes> bytes) {
    return inRows(bytes, [&](std::string& text, std::byte byte) {
        text += kDigits[std::to_integer<int>(byte >> 4)];
        text += kDigits[std::to_integer<int>(byte & std::byte{0x0F})];
        text += ' ';
    });
}

std::string characterPaneText(std::span<const std::byte, kHexViewBytes> bytes) {
    return inRows(bytes, [](std::string& text, std::byte byte) { text += shownCharacter(byte); });
}

std::string rowOffsetsText() {
    std::string text;
    for (int row = 0; row < kHexRows; ++row) {
        text += formatText("%03X\n", row * kHexBytesPerRow);
    }
    return text;
}

std::string hexPositionText(std::uint64_t sector, std::uint64_t sectors, std::uint64_t sectorBytes) {
    return formatText("Sector %" PRIu64 " of 0 to %" PRIu64 "    byte offset 0x%" PRIX64, sector,
                      sectors == 0 ? 0 : sectors - 1, sector * sectorBytes);
}

std::uint64_t sectorAtScrollPosition(std::uint64_t sectors, int position) {
    const double sector = static_cast<double>(sectors) * std::max(position, 0) / kHexScrollMaximum;
    const std::uint64_t last = sectors == 0 ? 0 : sectors - 1;
    return sector >= static_cast<double>(last) ? last : static_cast<std::uint64_t>(sector);
}

std::size_t hexReadBytes(std::int32_t bytesPerSector) {
    if (bytesPerSector > kLargestSector) {
        return kHexViewBytes;
    }
    const auto sector = static_cast<std::size_t>(usableSectorSize(bytesPerSector));
    return (kHexViewBytes + sector - 1) / sector * sector;
}

} // namespace torvane
