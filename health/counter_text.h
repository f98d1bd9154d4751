#pragma once

#include "records/counters.h"

#include <cstdint>
#include <string>

namespace torvane {

/// A counter's value in words: "4,012"; hours in years as well, "8,147 h, 0.9 y"; "not reported".
[[nodiscard]] std::string counterText(Counter counter, std::int32_t value);

} // namespace torvane
