#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// The text in Windows code page 1252, which is also PDF's WinAnsiEncoding (ISO 32000-1, annex D). A '?' stands for
/// each character that it lacks, and for each control character.
[[nodiscard]] std::string toWindows1252(std::u16string_view text);

} // namespace torvane
