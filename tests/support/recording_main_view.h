#pragma once

#include "state/app_state.h"
#include "state/main_view.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvane::testing {

/// A main window without a window: keeps what jobs and commands asked of it. Any thread may call.
///
///     RecordingMainView view;
///     const ViewInstalled installed(appState(), view); // LogEvent delivers to it until the end of the scope
class RecordingMainView : public MainView {
  public:
    void appendLogRow(const LogRow& row) override {
        const std::lock_guard lock(mutex_);
        logRows_.push_back(row);
        calls_.push_back("log " + row.category + ": " + row.message);
    }

    void showScanProgress(int maximum) override {
        const std::lock_guard lock(mutex_);
        progressVisible_ = true;
        progressMaximum_ = maximum;
        progress_.push_back(0);
        calls_.push_back("show progress 0.." + std::to_string(maximum));
    }
    void setScanProgress(int position) override {
        const std::lock_guard lock(mutex_);
        progress_.push_back(position);
        calls_.push_back("progress " + std::to_string(position));
    }
    void setScanStatus(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        statuses_.emplace_back(text);
        calls_.push_back("status " + std::string(text));
    }
    void hideScanProgress() override {
        const std::lock_guard lock(mutex_);
        progressVisible_ = false;
        calls_.emplace_back("hide progress");
    }

    void setWideProgress(int position) override {
        const std::lock_guard lock(mutex_);
        wideProgress_.push_back(position);
    }

    void addDriveRow(DriveRecord& record) override {
        const std::lock_guard lock(mutex_);
        record.listPosition = static_cast<std::int32_t>(driveRows_.size());
        driveRows_.push_back(&record);
        calls_.push_back("add drive " + std::string(record.model.view()));
    }
    void deleteDriveRows() override {
        const std::lock_guard lock(mutex_);
        driveRows_.clear();
        ticked_.clear();
        calls_.emplace_back("delete drives");
    }
    void redrawDriveList() override {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back("redraw drives");
    }
    void showDrivesFound(int shown, int notShown) override {
        const std::lock_guard lock(mutex_);
        drivesFound_ = {shown, notShown};
    }
    void setDriveStatus(const DriveRecord& record, std::string_view text) override {
        const std::lock_guard lock(mutex_);
        driveStatuses_[&record].emplace_back(text);
    }
    int driveRowCount() override {
        const std::lock_guard lock(mutex_);
        return static_cast<int>(driveRows_.size());
    }
    std::vector<DriveRecord*> tickedDrives() override {
        const std::lock_guard lock(mutex_);
        return ticked_;
    }

    void clearHealthPanel() override {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back("clear health panel");
    }

    void startTimer(int id, int milliseconds) override {
        const std::lock_guard lock(mutex_);
        timers_[id] = milliseconds;
        calls_.push_back("start timer " + std::to_string(id) + " " + std::to_string(milliseconds));
    }
    void stopTimer(int id) override {
        const std::lock_guard lock(mutex_);
        timers_.erase(id);
        calls_.push_back("stop timer " + std::to_string(id));
    }

    // What the user does.
    void tick(DriveRecord& record) {
        const std::lock_guard lock(mutex_);
        ticked_.push_back(&record);
    }

    // What was seen.
    [[nodiscard]] std::vector<LogRow> logRows() const { return copyOf(logRows_); }
    [[nodiscard]] std::vector<DriveRecord*> driveRows() const { return copyOf(driveRows_); }
    [[nodiscard]] std::vector<std::string> statuses() const { return copyOf(statuses_); }
    /// Every position the progress bar took, the first 0 included.
    [[nodiscard]] std::vector<int> progress() const { return copyOf(progress_); }
    [[nodiscard]] int progressMaximum() const { return copyOf(progressMaximum_); }
    /// Every position of the wide progress bar.
    [[nodiscard]] std::vector<int> wideProgress() const { return copyOf(wideProgress_); }
    [[nodiscard]] bool progressVisible() const { return copyOf(progressVisible_); }
    /// Every text of the drive's "Status" cell, in order.
    [[nodiscard]] std::vector<std::string> driveStatuses(const DriveRecord& record) const {
        const auto all = copyOf(driveStatuses_);
        const auto found = all.find(&record);
        return found == all.end() ? std::vector<std::string>() : found->second;
    }
    /// Of the last scan: listed, and left out.
    [[nodiscard]] std::pair<int, int> drivesFound() const { return copyOf(drivesFound_); }
    /// Running timers: id to milliseconds.
    [[nodiscard]] std::map<int, int> timers() const { return copyOf(timers_); }
    /// Every call in order, as short texts: "log STATUS: Beginning Drive Scan", "status Scan Complete", ...
    [[nodiscard]] std::vector<std::string> calls() const { return copyOf(calls_); }

    /// The messages of one category, in order.
    [[nodiscard]] std::vector<std::string> messages(std::string_view category) const {
        std::vector<std::string> found;
        for (const LogRow& row : logRows()) {
            if (row.category == category) {
                found.push_back(row.message);
            }
        }
        return found;
    }
    [[nodiscard]] bool hasLog(std::string_view category, std::string_view message) const {
        const auto all = messages(category);
        return std::find(all.begin(), all.end(), message) != all.end();
    }

  private:
    template <typename Value>
    Value copyOf(const Value& value) const {
        const std::lock_guard lock(mutex_);
        return value;
    }

    mutable std::mutex mutex_;
    std::vector<LogRow> logRows_;
    std::vector<DriveRecord*> driveRows_;
    std::vector<DriveRecord*> ticked_;
    std::vector<std::string> statuses_;
    std::vector<int> progress_;
    std::vector<int> wideProgress_;
    std::vector<std::string> calls_;
    std::map<int, int> timers_;
    std::map<const DriveRecord*, std::vector<std::string>> driveStatuses_;
    std::pair<int, int> drivesFound_{-1, -1};
    int progressMaximum_ = 0;
    bool progressVisible_ = false;
};

/// Makes `view` the state's main window for a scope.
class ViewInstalled {
  public:
    ViewInstalled(AppState& state, MainView& view) : state_(state) { state_.view = &view; }
    ~ViewInstalled() { state_.view = nullptr; }
    ViewInstalled(const ViewInstalled&) = delete;
    ViewInstalled& operator=(const ViewInstalled&) = delete;

  private:
    AppState& state_;
};

} // namespace torvane::testing
