#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// Outside text as a part of one line: a blank for each control character of ASCII, and for each other character at
/// which Unicode breaks a line (NEXT LINE, LINE SEPARATOR, PARAGRAPH SEPARATOR, in UTF-8).
[[nodiscard]] std::string oneLine(std::string_view text);

} // namespace torvane
