#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

namespace torvane::fuzz {

/// Ends the run with the input kept, like a crash: `condition` must hold for every input.
inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

inline bool isTerminated(std::span<const char> buffer) {
    return buffer.empty() || std::memchr(buffer.data(), '\0', buffer.size()) != nullptr;
}

} // namespace torvane::fuzz
