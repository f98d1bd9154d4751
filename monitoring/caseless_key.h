#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace torvane {

/// A key looked for in many lines, upper and lower case (ASCII) being the same.
///
/// A skip table for every possible byte (Horspool's search) makes a line cost about its length divided by the key's.
class CaselessKey {
  public:
    explicit CaselessKey(std::string_view key);

    /// True when the key starts at a position below the line's length minus the key's.
    // Stops one short, and kept: callers' keys are never the last thing on a line.
    [[nodiscard]] bool isWithin(std::string_view line) const;

  private:
    [[nodiscard]] bool matches(const char* at) const;

    std::string upperKey_;
    std::array<std::size_t, 256> skip_{};
};

} // namespace torvane
