#pragma once

#include "copy/engine/block_pipeline.h"
#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/drive_status.h"
#include "copy/jobs/job_progress.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace torvane {

// What the copy jobs have in common. A job says what differs: source, order, what happens to a block, texts, track.

/// Blocks of a physical drive.
class DriveBlocks : public BlockSource {
  public:
    DriveBlocks(CopySystem& system, const DriveRecord& drive) : system_(system), drive_(drive) {}
    FetchOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        return system_.fetch(drive_, extent.offset, bytes);
    }

  private:
    CopySystem& system_;
    const DriveRecord& drive_;
};

/// Blocks of an image file, one after the other from its current position.
class ImageBlocks : public BlockSource {
  public:
    explicit ImageBlocks(ImageFile& image) : image_(image) {}
    FetchOutcome fetch(const BlockExtent&, std::span<std::byte> bytes) override {
        return image_.read(bytes) ? FetchOutcome::kWhole : FetchOutcome::kReadFailed;
    }

  private:
    ImageFile& image_;
};

/// The drive's size in bytes; 0 when it is not known.
[[nodiscard]] std::uint64_t driveBytes(const DriveRecord& drive);

/// Clears the flags of the job before and puts the vehicle at its start.
void clearJobFlags(CopyJobState& state, std::int32_t carX, std::int32_t carY);

/// Raises the running flag. False, and the flag stays down, for a job that was asked to stop since its start: it moves
/// no block.
[[nodiscard]] bool raiseRunning(const CopyJob& job);

/// Raises the running flag, with the same result, and shows that the job has begun.
[[nodiscard]] bool showIdle(const CopyJob& job);

/// Adds the loss of a block to the drive's bad-read count. Returns the text of its log row.
[[nodiscard]] std::string countBadRead(DriveRecord& drive, std::uint64_t offset);

/// Does what a block that could not be read whole calls for: counts it, logs it and marks it. After a failed seek
/// nothing is counted or logged, and the block keeps the bytes of the block before it.
void settleDriveBlock(const CopyJob& job, DriveRecord& source, const Block& block, JobLosses& losses);

/// Wipes the destination's partition table before the first block: the system refuses raw writes inside a mounted
/// volume. Where there is no block to write, nothing is wiped. A failure leaves its log row and the job goes on. False
/// when the job was asked to stop before or meanwhile.
[[nodiscard]] bool cleanDestination(const CopyJob& job, const BlockOrder& order);

/// How a job shows its progress.
struct ProgressLook {
    TrackArea track;
    CopyDirection direction = CopyDirection::kForward;
    std::string_view label;                 ///< see statusLine
    std::string_view activity;              ///< see driveProgressText
    std::vector<const DriveRecord*> drives; ///< whose "Status" cell follows the job
};

/// Shows how far the job is: the status line at every call, vehicle and drive list whenever the percent has changed.
/// `lastPercent` starts at -1.
void UpdateStatusText(const CopyJob& job, JobTiming& timing, std::int64_t blocksDone, std::int32_t& lastPercent,
                      const ProgressLook& look);

/// Timing and look of one run over the blocks.
class JobProgress {
  public:
    JobProgress(const CopyJob& job, const BlockOrder& order, ProgressLook look);

    void update(std::uint64_t blocksDone);
    void setDriveStatus(const std::string& text) const;

  private:
    const CopyJob& job_;
    ProgressLook look_;
    JobTiming timing_;
    std::int32_t lastPercent_ = -1;
};

/// What a job that reads a drive does about the limit of unreadable blocks.
struct BadBlockRule {
    DriveRecord* source = nullptr; ///< null: there is no limit
    int explosionMilliseconds = 0;
};

enum class RunEnd {
    kWhole,            ///< every block was moved
    kRemainderSkipped, ///< every full block was moved; then the job was asked to stop
    kLeftEarly,        ///< asked to stop, or stopped by unreadable blocks, before that
    kGaveUp,           ///< the job itself could not go on with a block
};

[[nodiscard]] constexpr bool movedFullBlocks(RunEnd end) {
    return end == RunEnd::kWhole || end == RunEnd::kRemainderSkipped;
}

/// Moves all blocks in order. `deal` gets each one, and returns false when the job cannot go on. After each full block
/// comes the test for too many unreadable blocks, then the test whether the job was asked to stop, then the progress
/// and `finished`; the remainder is moved only while the job still runs. When this returns, no read is in flight.
[[nodiscard]] RunEnd moveBlocks(const CopyJob& job, BlockPipeline& blocks, JobProgress& progress,
                                const BadBlockRule& rule, const std::function<bool(const Block&)>& deal,
                                const std::function<void()>& finished = {});

/// Marks the job as failed and shows the explosion.
void showFailure(const CopyJob& job, std::string_view status, int explosionMilliseconds);
/// Marks the job as completed, the vehicle at its finish.
void showSuccess(const CopyJob& job, std::string_view status, std::int32_t carX);

/// How a run that did not move every block ended, in the "Status" cell's words.
inline constexpr std::string_view kNotCompleted = "not completed";

/// The "Status" cell's account of how a run over the blocks ended.
[[nodiscard]] std::string runOutcomeText(RunEnd end, const JobLosses& losses);

/// The drive's "Status" cell of a job that ended before its first block: what an earlier job left there is not its own.
void showNotStarted(const CopyJob& job, const DriveRecord& drive);

/// One log row.
void reportNoMemory(const CopyJob& job);

inline constexpr int kExplosionMilliseconds = 750;

} // namespace torvane
