#pragma once

#include <cstdarg>
#include <string>

#if defined(__MINGW32__)
#define TORVANE_PRINTF_LIKE(formatIndex, firstArgument)                                                                \
    __attribute__((format(__MINGW_PRINTF_FORMAT, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define TORVANE_PRINTF_LIKE(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define TORVANE_PRINTF_LIKE(formatIndex, firstArgument)
#endif

namespace torvane {

/// The text that printf would print. `format` is always one of our own literals: outside text is an argument, never the
/// format. 64-bit numbers take PRId64 and PRIu64. An impossible conversion gives an empty text.
[[nodiscard]] std::string formatText(const char* format, ...) TORVANE_PRINTF_LIKE(1, 2);

[[nodiscard]] std::string formatTextV(const char* format, std::va_list arguments) TORVANE_PRINTF_LIKE(1, 0);

} // namespace torvane
