#pragma once

#include "state/app_state.h"
#include "state/event_log_file.h"
#include "state/log_row.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace torvane::testing {

/// The event log's file without a file: keeps the rows as long as it stands in the state's place for one, which is its
/// own life. Any thread may append.
class RecordingLogFile : public EventLogFile {
  public:
    RecordingLogFile() { appState().eventLogFile = this; }
    ~RecordingLogFile() override { appState().eventLogFile = nullptr; }
    RecordingLogFile(const RecordingLogFile&) = delete;
    RecordingLogFile& operator=(const RecordingLogFile&) = delete;

    std::optional<std::string> append(const LocalMoment&, const LogRow& row) override {
        const std::lock_guard lock(mutex_);
        rows_.push_back(row);
        return std::exchange(complaint_, std::nullopt);
    }

    /// The next row cannot be kept, and the user is told `complaint`.
    void complain(std::string complaint) {
        const std::lock_guard lock(mutex_);
        complaint_ = std::move(complaint);
    }

    /// The messages of one category, in order.
    [[nodiscard]] std::vector<std::string> messages(const std::string& category) const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> found;
        for (const LogRow& row : rows_) {
            if (row.category == category) {
                found.push_back(row.message);
            }
        }
        return found;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<LogRow> rows_;
    std::optional<std::string> complaint_;
};

} // namespace torvane::testing
