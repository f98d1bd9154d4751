#pragma once

#include "copy/engine/block_pipeline.h"
#include "copy/engine/block_sink.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/copy_progress.h"
#include "copy/jobs/drive_status.h"
#include "copy/jobs/job_account.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace torvane {

// What the copy jobs have in common. A job says what differs: source, order, what happens to a block, texts, track.

/// The drive's size in bytes; 0 when it is not known.
[[nodiscard]] std::uint64_t driveBytes(const DriveRecord& drive);

/// Clears the flags of the job before and puts the vehicle at its start.
void clearTrack(RaceTrackState& track, std::int32_t carX, std::int32_t carY);

/// Raises the job's flag and shows that it has begun. False for a job that was asked to stop since its start: it moves
/// no block.
[[nodiscard]] bool showIdle(const CopyJob& job);

/// Does what a block that could not be read whole calls for (`settleRead`), and adds it to the account. Where the place
/// could not be reached the block keeps the bytes of the block before it.
void settleBlock(const CopyJob& job, DriveRecord& source, const Block& block, JobAccount& account);

/// Stores the block, and adds to the account how that went; its bytes are none of those that no block took along. From
/// time to time the job's files tell how far it has come. True when it was stored whole.
bool storeBlock(const CopyJob& job, BlockSink& sink, const Block& block, JobAccount& account);

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

/// Moves all blocks in order. `move` gets each one, and returns false when the job cannot go on. Then the block counts
/// as dealt with in the progress, which begins before the first one. After each full block comes the test for too many
/// unreadable blocks, then the test whether the job was asked to stop, then the progress and `finished`; the remainder
/// is moved only while the job still runs. When this returns, no read is in flight.
[[nodiscard]] RunEnd moveBlocks(const CopyJob& job, BlockPipeline& blocks, CopyProgress& progress,
                                const BadBlockRule& rule, const std::function<bool(const Block&)>& move,
                                const std::function<void()>& finished = {});

/// Marks the job as failed and shows the explosion.
void showFailure(const CopyJob& job, std::string_view status, int explosionMilliseconds);
/// Marks the job as completed, the vehicle at its finish.
void showSuccess(const CopyJob& job, std::string_view status, std::int32_t carX);

/// After a run, and before its end is shown: where it moved its full blocks, waits until everything that was stored is
/// on the medium. A flush that failed, on the way too, is added to the losses like a failed write, and what it should
/// have brought there counts as missing from the copy. False when something of a run that moved its full blocks may not
/// be there.
bool flushStored(BlockSink& sink, RunEnd end, JobAccount& account);

/// What the sink has stored and cannot vouch for (`BlockSink::doubtful`) counts as missing from the copy.
void markDoubtful(const BlockSink& sink, JobAccount& account);

/// Who has ended a run that reads the drive and ended so, where no failure of the job's own has.
[[nodiscard]] Stopper stopperOf(RunEnd end, const DriveRecord& source);

/// How a run over the blocks ended, in words: "completed", "not completed".
[[nodiscard]] std::string_view endingInWords(RunEnd end);

/// The "Status" cell's account of how a run over the blocks ended.
[[nodiscard]] std::string runOutcomeText(RunEnd end, const JobLosses& losses);

/// The drive's "Status" cell of a job that ended before its first block: what an earlier job left there is not its own.
void showNotStarted(const CopyJob& job, const DriveRecord& drive);

/// One log row.
void reportNoMemory(const CopyJob& job);

inline constexpr int kExplosionMilliseconds = 750;

} // namespace torvane
