#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// What a job lost on its way.
struct JobLosses {
    std::uint64_t unreadableBlocks = 0; ///< blocks that could not be read whole
    std::uint64_t failedWrites = 0;     ///< blocks that could not be written whole
    std::uint64_t bytesNotCopied = 0;   ///< of the source: those that no block took along
    bool notHashed = false;             ///< a digest was wanted, and there is none
    bool mountedMeanwhile = false;      ///< writes failed because a volume was mounted on the destination
};

/// Something could not be read or written.
[[nodiscard]] bool hasFaults(const JobLosses& losses);

[[nodiscard]] bool hasLost(const JobLosses& losses);

/// "2 unreadable blocks, 40 failed writes": what could not be read or written. Empty when everything could.
[[nodiscard]] std::string faultsInWords(const JobLosses& losses);

/// "2 unreadable blocks, 40 failed writes, 512 MB of the source not copied"; "Nothing was lost" when nothing was. Units
/// are powers of 1024 bytes.
[[nodiscard]] std::string lossesInWords(const JobLosses& losses);

/// How a job ended that went through to its end, in the log file's words.
inline constexpr std::string_view kCompleted = "completed";

/// How a job that did not go through to its end ended, in the "Status" cell's words.
inline constexpr std::string_view kNotStarted = "not started";
inline constexpr std::string_view kNotCompleted = "not completed";

/// The "Status" cell of a drive after a job: "COMPLETED" when everything arrived, else "BAD" with what went wrong and
/// how often. `ending` is empty for a job that went through to its end, otherwise says how it ended; then it goes
/// without saying that a part of the source was not copied.
[[nodiscard]] std::string driveOutcomeText(std::string_view ending, const JobLosses& losses);

} // namespace torvane
