#include "copy/jobs/comparison_steps.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/job_account.h"
#include "records/sector_size.h"

#include <algorithm>
#include <optional>

namespace torvane {

namespace {

/// What tells the two directions apart.
struct CloneWay {
    CopyDirection direction;
    std::int32_t startX;
    std::int32_t finishX;
    int badBlockExplosionMilliseconds;
    const char* terminated;
    const char* completed;
    bool idleBeforeLastRepaint; ///< the flag falls before the track is painted for the last time
};

constexpr CloneWay kForwardWay{
    .direction = CopyDirection::kForward,
    .startX = kTrackStartX,
    .finishX = kTrackFinishX,
    .badBlockExplosionMilliseconds = kExplosionMilliseconds,
    // A forward clone speaks of an image, a reverse one of a clone; both on purpose.
    .terminated = " User Terminated Image",
    .completed = " Image Completed",
    .idleBeforeLastRepaint = true,
};

constexpr CloneWay kReverseWay{
    .direction = CopyDirection::kReverse,
    .startX = kTrackFinishX,
    .finishX = kTrackStartX,
    .badBlockExplosionMilliseconds = 500,
    .terminated = " User Terminated Clone",
    .completed = " Clone SUCCESSFULLY Completed",
    .idleBeforeLastRepaint = false,
};

/// Bytes of what the source is read in. An image file has no sectors.
std::uint64_t sourceUnit(const DriveRecord& source) {
    return source.recordKind == kRecordKindImageFile ? 1 : sectorSizeOf(source);
}

CopyRange cloneRange(const CopyJob& job, const DriveRecord& source, const DriveRecord& destination) {
    // A smaller destination is not refused: the clone ends where it ends, and tells what is missing.
    return copyRange(std::min(driveBytes(source), driveBytes(destination)),
                     {.source = sourceUnit(source), .destination = sectorSizeOf(destination)}, job.blockSize);
}

BlockOrder cloneOrder(const CopyJob& job, const CopyRange& range, const CloneWay& way) {
    return way.direction == CopyDirection::kForward ? BlockOrder::forward(range.orderedBytes, job.blockSize)
                                                    : BlockOrder::reverse(range.orderedBytes, job.blockSize);
}

std::uint32_t runClone(const CopyJob& job, const CloneWay& way, JobAccount& account) {
    DriveRecord& source = *job.order.source;
    DriveRecord& destination = *job.order.destination;
    clearTrack(job.track, way.startX, kCloneCarY);
    source.badReadCount = 0;

    const CopyRange range = cloneRange(job, source, destination);
    if (!isPaddingWanted(job, range, "SOURCE")) {
        return endDeclined(job);
    }
    DriveSource driveSource(job.drives, source);
    LimitedSource limited(driveSource, range.bytes, range.sourceEnd);
    DriveSink sink(job.drives, destination);
    const BlockOrder order = cloneOrder(job, range, way);
    std::optional<BlockPipeline> blocks(std::in_place, limited, order);
    if (!blocks->hasBuffers()) {
        reportNoMemory(job);
        showNotStarted(job, source);
        showNotStarted(job, destination);
        return 0;
    }
    const Readiness readiness = showIdle(job) ? prepareDestination(job, order) : Readiness::kStopped;
    if (readiness == Readiness::kRefused) {
        return endRefused(job);
    }
    const bool unmounted = readiness == Readiness::kReady && isDestinationUnmounted(job);
    CopyProgress progress(job, order,
                          {.track = kCloneTrack,
                           .direction = way.direction,
                           .label = " Status",
                           .activity = "Cloning",
                           .drives = {&source, &destination},
                           .losses = &account.losses});

    JobLosses& losses = account.losses;
    expectBytes(account, driveBytes(source), range.bytes);
    const auto copyBlock = [&](const Block& block) {
        settleBlock(job, source, block, account);
        // A failed write is counted, nothing more: the clone goes on.
        storeBlock(job, sink, forDestination(block, range), account);
        return true;
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = way.badBlockExplosionMilliseconds};
    RunEnd end = RunEnd::kLeftEarly;
    if (readiness == Readiness::kReady) {
        beginDriveEvidence(job, account);
        end = moveBlocks(job, *blocks, progress, rule, copyBlock);
        flushStored(sink, end, account); // counted like a failed write, too
        losses.mountedMeanwhile = unmounted && wasMountedMeanwhile(job, sink);
        account.comparison = compareIfWanted(job, end, [&] {
            endBlocks(job, account, endingInWords(end), stopperOf(end, source));
            blocks.reset(); // there is no memory for both
            const auto isLost = [&](const BlockExtent& extent) {
                return account.read.statusAt(extent.offset) != RangeStatus::kFinished;
            };
            return compareWithSource(job, {.source = limited,
                                           .range = range,
                                           .order = order,
                                           .isLost = isLost,
                                           .direction = way.direction,
                                           .losses = losses});
        });
        adoptNewTable(job, sink);
    }

    concludeRun(job, account, endingInWords(end), stopperOf(end, source));
    if (isRefuted(account.comparison)) {
        showFailure(job, kNotVerified, kExplosionMilliseconds);
    } else if (movedFullBlocks(end)) {
        showSuccess(job, way.completed, way.finishX);
    } else {
        showFailure(job, way.terminated, kExplosionMilliseconds);
    }
    progress.setDriveStatus(copyOutcomeText(end, losses, account.comparison));
    if (way.idleBeforeLastRepaint) {
        job.claim.lower();
    }
    job.display.repaintTrack(kCloneTrack);
    job.claim.lower();
    return 1;
}

} // namespace

std::uint32_t runForwardClone(const CopyJob& job) {
    return runOntoDrive(job, [&](JobAccount& account) { return runClone(job, kForwardWay, account); });
}

std::uint32_t runReverseClone(const CopyJob& job) {
    return runOntoDrive(job, [&](JobAccount& account) { return runClone(job, kReverseWay, account); });
}

} // namespace torvane
