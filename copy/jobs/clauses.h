#pragma once

#include "base/format.h"

#include <cinttypes>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

// Sentences of clauses with commas between them: "3 unreadable blocks, 1 failed write".

inline void addClause(std::string& text, std::string_view clause) {
    text.append(text.empty() ? "" : ", ").append(clause);
}

/// Nothing for a count of 0.
inline void addCount(std::string& text, std::uint64_t count, std::string_view one, std::string_view many) {
    if (count != 0) {
        addClause(text, formatText("%" PRIu64 " ", count).append(count == 1 ? one : many));
    }
}

} // namespace torvane
