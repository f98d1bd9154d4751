#include "copy/jobs/copy_steps.h"

#include "copy/engine/block_io.h"

#include <algorithm>

namespace torvane {

namespace {

bool stopsForBadBlocks(const CopyJob& job, const BadBlockRule& rule) {
    if (rule.source == nullptr || rule.source->badReadCount < kBadBlockLimit) {
        return false;
    }
    job.track.failed = 1;
    job.claim.lower();
    job.display.startExplosionTimer(rule.explosionMilliseconds);
    return true;
}

} // namespace

std::uint64_t driveBytes(const DriveRecord& drive) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(drive.sizeBytes, 0));
}

void clearTrack(RaceTrackState& track, std::int32_t carX, std::int32_t carY) {
    track.carX = carX;
    track.carY = carY;
    track.failed = 0;
    track.explosionFrame = 0;
    track.succeeded = 0;
}

bool showIdle(const CopyJob& job) {
    const bool wanted = job.claim.raise();
    job.display.setStatus(" Status: Idle");
    job.display.repaint();
    return wanted;
}

void settleBlock(const CopyJob& job, DriveRecord& source, const Block& block, JobAccount& account) {
    const bool whole = block.outcome == TransferOutcome::kWhole;
    account.losses.unreadableBlocks += whole ? 0 : 1;
    account.read.mark(block.extent.offset, block.extent.length,
                      whole ? RangeStatus::kFinished : RangeStatus::kNonTrimmed);
    settleRead(source, block.extent.offset, block.bytes, block.outcome,
               [&](const std::string& text) { job.system.logError(text); });
}

bool storeBlock(const CopyJob& job, BlockSink& sink, const Block& block, JobAccount& account) {
    const bool stored = sink.store(block.extent, block.bytes) == TransferOutcome::kWhole;
    JobLosses& losses = account.losses;
    losses.failedWrites += stored ? 0 : 1;
    losses.bytesNotCopied -= std::min<std::uint64_t>(losses.bytesNotCopied, block.extent.length);
    if (stored) {
        // What lies behind the copied part are zeros that fill a sector.
        account.map.mark(block.extent.offset, bytesUpTo(account.copiedBytes, block.extent),
                         block.outcome == TransferOutcome::kWhole ? RangeStatus::kFinished : RangeStatus::kNonTrimmed);
    }
    saveEvidenceMeanwhile(job, account, sink);
    return stored;
}

RunEnd moveBlocks(const CopyJob& job, BlockPipeline& blocks, CopyProgress& progress, const BadBlockRule& rule,
                  const std::function<bool(const Block&)>& move, const std::function<void()>& finished) {
    const std::uint64_t fullBlocks = blocks.order().fullBlocks();
    const auto giveUp = [&] {
        blocks.stop();
        return RunEnd::kGaveUp;
    };
    const auto moveNext = [&] {
        const Block block = blocks.take();
        const bool moved = move(block);
        if (moved) {
            progress.count(block.extent.length);
        }
        return moved;
    };
    progress.begin();
    blocks.start();
    std::uint64_t done = 0;
    while (done < fullBlocks) {
        if (!moveNext()) {
            return giveUp();
        }
        if (stopsForBadBlocks(job, rule) || !job.claim.isRaised()) {
            break;
        }
        // The block just moved is not counted yet, so the last one is never shown as 100 %.
        progress.update(done);
        ++done;
        if (finished) {
            finished();
        }
    }
    const bool remainderSkipped = blocks.order().hasRemainder() && !job.claim.isRaised();
    if (blocks.order().hasRemainder() && !remainderSkipped) {
        if (!moveNext()) {
            return giveUp();
        }
        stopsForBadBlocks(job, rule);
    }
    blocks.stop();
    if (done < fullBlocks) {
        return RunEnd::kLeftEarly;
    }
    return remainderSkipped ? RunEnd::kRemainderSkipped : RunEnd::kWhole;
}

bool flushStored(BlockSink& sink, RunEnd end, JobAccount& account) {
    const bool moved = movedFullBlocks(end);
    const TransferOutcome outcome = sink.flush(moved ? UnflushedBlocks::kFlush : UnflushedBlocks::kLeave);
    account.losses.failedWrites += hasFailed(outcome) ? 1 : 0;
    markDoubtful(sink, account);
    return !moved || outcome == TransferOutcome::kWhole;
}

void markDoubtful(const BlockSink& sink, JobAccount& account) {
    for (const BlockExtent& place : sink.doubtful()) {
        account.map.mark(place.offset, place.length, RangeStatus::kNonTried);
    }
}

Stopper stopperOf(RunEnd end, const DriveRecord& source) {
    if (end == RunEnd::kWhole) {
        return Stopper::kNobody;
    }
    return source.badReadCount >= kBadBlockLimit ? Stopper::kBadBlocks : Stopper::kUser;
}

std::string_view endingInWords(RunEnd end) {
    return end == RunEnd::kWhole ? kCompleted : kNotCompleted;
}

std::string runOutcomeText(RunEnd end, const JobLosses& losses) {
    return driveOutcomeText(end == RunEnd::kWhole ? "" : kNotCompleted, losses);
}

void showFailure(const CopyJob& job, std::string_view status, int explosionMilliseconds) {
    job.track.failed = 1;
    job.display.setStatus(status);
    job.display.startExplosionTimer(explosionMilliseconds);
}

void showSuccess(const CopyJob& job, std::string_view status, std::int32_t carX) {
    job.track.carX = carX;
    job.track.succeeded = 1;
    job.display.setStatus(status);
}

void showNotStarted(const CopyJob& job, const DriveRecord& drive) {
    job.system.setDriveStatus(drive, driveOutcomeText(kNotStarted, {}));
}

void reportNoMemory(const CopyJob& job) {
    job.system.logError("Could not ALLOCATE copy buffers");
}

} // namespace torvane
