#pragma once

#include <cstddef>

namespace torvane::testing {

// What a tool gone wrong may print, and how long reading it may take. Sanitizers and unoptimised code get a tenth of
// the text and more time: the bound stays one that a cost growing with the square of the text would break.
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
inline constexpr std::size_t kHugeText = 5'000'000;
inline constexpr double kHugeTextSeconds = 60.0;
#else
inline constexpr std::size_t kHugeText = 50'000'000;
inline constexpr double kHugeTextSeconds = 15.0;
#endif

} // namespace torvane::testing
