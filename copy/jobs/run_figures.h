#pragma once

#include "copy/jobs/drive_status.h"

#include <cstdint>
#include <string>

namespace torvane {

/// How far one run over a job's blocks is, be it a copy or a verification.
struct RunFigures {
    std::uint64_t done = 0;  ///< bytes of the source that were dealt with, from whichever end, readable or not
    std::uint64_t total = 0; ///< bytes of the source to deal with, up to the end of the last sector
    JobLosses losses;        ///< so far
};

/// "41.2 of 465.8 GB, 118 MB/s, 0:06:02 elapsed; 2 unreadable blocks, 1 failed write": sizes in the total's unit, the
/// rate in MB/s, a lower one in KB/s. What was lost stands there as soon as anything was.
[[nodiscard]] std::string runInWords(const RunFigures& run, std::uint64_t bytesPerSecond, std::int64_t elapsedSeconds);

/// "118 MB/s", "512 KB/s"
[[nodiscard]] std::string rateInWords(std::uint64_t bytesPerSecond);

/// "0:06:02": hours, minutes, seconds.
[[nodiscard]] std::string durationInWords(std::int64_t seconds);

} // namespace torvane
