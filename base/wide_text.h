#pragma once

#include <string>
#include <string_view>

namespace torvane {

// Between the system's own characters and those of the ANSI code page (CP_ACP), in which the program's texts are:
// UTF-8, which the manifest asks for, where the system knows that wish.

/// Bytes that are no UTF-8 are read as utf16FromUtf8() says (base/utf8_text.h), in other code pages as the system does.
[[nodiscard]] std::wstring wideText(std::string_view text);
/// A character that the code page does not have becomes its own "cannot be shown".
[[nodiscard]] std::string ansiText(std::wstring_view text);

/// In UTF-8, whatever the code page. Half a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string utf8Text(std::wstring_view text);

} // namespace torvane
