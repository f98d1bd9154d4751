#pragma once

#include <string>
#include <string_view>

namespace torvane::driver {

[[nodiscard]] std::string toUtf8(std::wstring_view text);
[[nodiscard]] std::wstring toWide(std::string_view utf8);

} // namespace torvane::driver
