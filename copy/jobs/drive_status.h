#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// What a job lost on its way.
struct JobLosses {
    std::uint64_t unreadableBlocks = 0; ///< blocks that could not be read whole
    std::uint64_t failedWrites = 0;     ///< blocks that could not be written whole
};

/// The "Status" cell of a drive after a job: "COMPLETED" when everything arrived, else "BAD" with what went wrong and
/// how often. `ending` is empty for a job that went through to its end, otherwise says how it ended: "not completed".
[[nodiscard]] std::string driveOutcomeText(std::string_view ending, const JobLosses& losses);

} // namespace torvane
