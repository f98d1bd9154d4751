#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// The text in UTF-16 (Unicode Standard, table 3-7: well-formed UTF-8). A byte that belongs to no character of UTF-8 is
/// read as ISO 8859-1, in which devices and older files write what is not ASCII: a degree sign alone is the byte 0xB0.
/// Of these bytes, the control characters 0x80 to 0x9F become U+FFFD.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view text);

} // namespace torvane
