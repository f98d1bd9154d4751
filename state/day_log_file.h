#pragma once

#include "state/event_log_file.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <string>

namespace torvane {

/// The event log as one file a day, "Torvane 2026-11-22.log". Every row is appended for itself and the file closed
/// again, so that a new day begins a new file, and others may read, move or delete it at any time. Several programs may
/// append at once: each locks out the others for the moment of one row.
///
/// A crash of the program loses no row. Nor does one of the system, but of rows in quick succession: these are flushed
/// once a second, because a flush takes a disk its turn, a stick a tenth of a second, and a job that meets a hundred
/// thousand bad blocks would spend its night on them. Rows of jobs (category "JOB") are always flushed, and with them
/// all before.
class DayLogFile : public EventLogFile {
  public:
    /// How large a day's file gets, in bytes, but for its last two rows.
    static constexpr std::uint64_t kMostBytes = std::uint64_t{16} << 20;

    /// In that folder, and nowhere else when it cannot be written. Once a file has `mostBytes`, a last row says so, and
    /// no more are kept on that day, but for 1 MiB of rows of jobs (category "JOB").
    explicit DayLogFile(std::string folder, std::uint64_t mostBytes = kMostBytes);

    [[nodiscard]] std::optional<std::string> append(const LocalMoment& when, const LogRow& row) override;

  private:
    /// An error of the system, or NO_ERROR.
    DWORD appendLine(HANDLE file, const LocalMoment& when, const LogRow& row);
    DWORD flushIfDue(HANDLE file, const LogRow& row);

    static constexpr std::int64_t kNever = std::numeric_limits<std::int32_t>::min();

    std::string folder_;
    std::uint64_t mostBytes_;
    std::atomic<bool> failureTold_{false};
    std::atomic<std::int64_t> lastFlush_{kNever}; ///< milliseconds since the system's start
};

} // namespace torvane
