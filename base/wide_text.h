#pragma once

#include <string>
#include <string_view>

namespace torvane {

// Between the system's own characters and those of the ANSI code page (CP_ACP), in which the program's texts are. A
// character that the code page does not have becomes its own "cannot be shown".

[[nodiscard]] std::wstring wideText(std::string_view text);
[[nodiscard]] std::string ansiText(std::wstring_view text);

} // namespace torvane
