#pragma once

#include "state/event_log_file.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace torvane {

/// The event log as one file a day, "Torvane 2026-11-22.log". Every row is appended and flushed for itself and the file
/// closed again, so that a crash loses none, a new day begins a new file, and others may read, move or delete it at any
/// time. Several programs may append at once: each locks out the others for the moment of one row.
class DayLogFile : public EventLogFile {
  public:
    /// How large a day's file gets, in bytes, but for its last two rows.
    static constexpr std::uint64_t kMostBytes = std::uint64_t{16} << 20;

    /// In that folder, and nowhere else when it cannot be written. Once a file has `mostBytes`, a last row says so, and
    /// no more are kept on that day, but for 1 MiB of rows of jobs (category "JOB").
    explicit DayLogFile(std::string folder, std::uint64_t mostBytes = kMostBytes);

    [[nodiscard]] std::optional<std::string> append(const LocalMoment& when, const LogRow& row) override;

  private:
    std::string folder_;
    std::uint64_t mostBytes_;
    std::atomic<bool> failureTold_{false};
};

} // namespace torvane
