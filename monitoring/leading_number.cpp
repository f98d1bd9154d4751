#include "monitoring/leading_number.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace torvane {

std::int64_t leadingInt64(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1); // from_chars knows the minus sign alone
    }
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        return negative ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    }
    return number;
}

std::int32_t leadingInt32(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(leadingInt64(text), Limits::min(), Limits::max()));
}

} // namespace torvane
