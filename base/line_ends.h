#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// The text with every line ended by CR LF, as an edit control wants it: a bare LF gets its CR.
[[nodiscard]] std::string withWindowsLineEnds(std::string_view text);

} // namespace torvane
