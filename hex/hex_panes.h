#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace torvane {

// What the hex viewer shows: 512 bytes in 32 rows of 16. Each row ends in a line feed.

inline constexpr std::size_t kHexViewBytes = 512;
inline constexpr int kHexRows = 32;
inline constexpr int kHexBytesPerRow = 16;

/// Two hexadecimal digits and a blank for each byte.
[[nodiscard]] std::string hexPaneText(std::span<const std::byte, kHexViewBytes> bytes);

/// Each printable ASCII character as it is, every other byte as ".".
[[nodiscard]] std::string characterPaneText(std::span<const std::byte, kHexViewBytes> bytes);

/// The place of each row inside the sector, three hexadecimal digits.
[[nodiscard]] std::string rowOffsetsText();

/// Where the shown sector lies on the drive. `sectors`: the drive's size in its own sectors of `sectorBytes`.
[[nodiscard]] std::string hexPositionText(std::uint64_t sector, std::uint64_t sectors, std::uint64_t sectorBytes);

/// The scroll bar's range is 0 to this.
inline constexpr int kHexScrollMaximum = 32000;

/// The sector for a position of the scroll bar: always one of the drive's, 0 on a drive without any.
[[nodiscard]] std::uint64_t sectorAtScrollPosition(std::uint64_t sectors, int position);

/// How much is read for a sector: at least what is shown, and in whole sectors, as a raw drive wants it.
[[nodiscard]] std::size_t hexReadBytes(std::int32_t bytesPerSector);

} // namespace torvane
