#pragma once

#include "copy/engine/block_layout.h"
#include "copy/jobs/copy_job.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// How far a job is, for its time left.
struct JobTiming {
    std::int64_t startTick = 0; ///< milliseconds
    std::int64_t done = 0;      ///< blocks
    std::int64_t total = 0;     ///< blocks
};

/// The time left as "hours:minutes:seconds", two digits each and more for the hours where needed. "00:00:00" during the
/// first second and before the first block is done. `nowTick` is in milliseconds.
[[nodiscard]] std::string EstimateRemainingTime(const JobTiming& timing, std::int64_t nowTick);

enum class CopyDirection : std::int32_t { kForward = 1, kReverse = 2 };

/// 0 to 100, rounded down. A job without a single full block is done: 100.
[[nodiscard]] std::int32_t percentDone(std::int64_t done, std::int64_t total);

/// The vehicle's x, in dialog pixels.
[[nodiscard]] std::int32_t carPosition(std::int64_t done, std::int64_t total, CopyDirection direction);

/// The status line while a job runs: `label` is " Status" or " Image Status". The percent sign stands before the
/// number.
[[nodiscard]] std::string statusLine(std::string_view label, std::string_view remaining, std::int32_t percent);

/// How a job shows its progress.
struct ProgressLook {
    TrackArea track;
    CopyDirection direction = CopyDirection::kForward;
    std::string_view label;                 ///< see statusLine
    std::string_view activity;              ///< see driveProgressText
    std::vector<const DriveRecord*> drives; ///< whose "Status" cell follows the job
    const JobLosses* losses = nullptr;      ///< what is lost so far; null: nothing can be
};

/// Shows how far the job is: the status line at every call, vehicle and drive list whenever the percent has changed.
/// `lastPercent` starts at -1.
void UpdateStatusText(const CopyJob& job, JobTiming& timing, std::int64_t blocksDone, std::int32_t& lastPercent,
                      const ProgressLook& look);

/// Timing and look of one run over the blocks.
class CopyProgress {
  public:
    CopyProgress(const CopyJob& job, const BlockOrder& order, ProgressLook look);

    /// No byte is done yet, and the display's clock begins to run.
    void begin() { showRun(); }
    /// So many bytes more were dealt with.
    void count(std::uint64_t bytes);

    void update(std::uint64_t blocksDone);
    void setDriveStatus(const std::string& text) const;

  private:
    void showRun() const;

    const CopyJob& job_;
    ProgressLook look_;
    JobTiming timing_;
    std::uint64_t bytesDone_ = 0;
    std::uint64_t bytesTotal_;
    std::int32_t lastPercent_ = -1;
};

} // namespace torvane
