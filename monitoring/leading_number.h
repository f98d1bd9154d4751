#pragma once

#include <cstdint>
#include <string_view>

namespace torvane {

/// The decimal number that a text begins with, white space and one sign before it allowed: "1234h+05m" gives 1234, a
/// text that begins otherwise gives 0. A number too large for the result becomes the largest one, too small the
/// smallest.
[[nodiscard]] std::int64_t leadingInt64(std::string_view text);
[[nodiscard]] std::int32_t leadingInt32(std::string_view text);

} // namespace torvane
