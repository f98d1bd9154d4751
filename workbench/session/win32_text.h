#pragma once

#include <string>
#include <string_view>

namespace torvane::bench {

/// UTF-8 to UTF-16 and back; what is malformed becomes U+FFFD.
[[nodiscard]] std::wstring wideFromUtf8(std::string_view text);
[[nodiscard]] std::string utf8FromWide(std::wstring_view text);

/// In the code page that the A functions use.
[[nodiscard]] std::wstring wideFromAnsi(std::string_view text);
[[nodiscard]] std::string ansiFromWide(std::wstring_view text);

/// 8-bit text of a description, one character for each byte.
[[nodiscard]] std::wstring wideFromBytes(std::string_view text);

} // namespace torvane::bench
