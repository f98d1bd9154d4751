#pragma once

#include <span>
#include <string>
#include <string_view>

namespace torvane {

/// Removes leading blanks (0x20), and trailing blanks back to but not including the first character: a text of nothing
/// but blanks becomes one blank.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

/// Swaps the two bytes of every 16-bit word. ATA identify strings hold two characters a word, high byte first
/// (ATA/ATAPI Command Set, IDENTIFY DEVICE). An odd last byte stays where it is.
void swapBytePairs(std::span<char> bytes);

/// A device's own text after expansion as a printf format without arguments: "%%" gives one percent sign, every other
/// conversion (flags, width, precision, length, letter) gives nothing, a percent sign that starts no conversion at the
/// text's end gives nothing. The C library's formatter never sees the text.
[[nodiscard]] std::string expandDeviceText(std::string_view text);

} // namespace torvane
