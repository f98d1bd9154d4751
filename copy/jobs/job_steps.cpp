#include "copy/jobs/job_steps.h"

#include "base/format.h"
#include "records/drive_texts.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

bool stopsForBadBlocks(const CopyJob& job, const BadBlockRule& rule) {
    if (rule.source == nullptr || rule.source->badReadCount < kBadBlockLimit) {
        return false;
    }
    job.state.failed = 1;
    job.running = 0;
    job.display.startExplosionTimer(rule.explosionMilliseconds);
    return true;
}

} // namespace

std::uint64_t driveBytes(const DriveRecord& drive) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(drive.sizeBytes, 0));
}

void clearJobFlags(CopyJobState& state, std::int32_t carX, std::int32_t carY) {
    state.carX = carX;
    state.carY = carY;
    state.failed = 0;
    state.explosionFrame = 0;
    state.succeeded = 0;
}

bool raiseRunning(const CopyJob& job) {
    job.running = 1;
    if (job.state.stopAsked == 1) {
        job.running = 0;
        return false;
    }
    return true;
}

bool showIdle(const CopyJob& job) {
    const bool wanted = raiseRunning(job);
    job.display.setStatus(" Status: Idle");
    job.display.repaint();
    return wanted;
}

std::string countBadRead(DriveRecord& drive, std::uint64_t offset) {
    ++drive.badReadCount;
    return formatText("BAD READ BLOCK AT SECTOR: [%" PRId64 "]", sectorOfOffset(offset, drive.bytesPerSector));
}

void settleDriveBlock(const CopyJob& job, DriveRecord& source, const Block& block, JobLosses& losses) {
    if (block.outcome == FetchOutcome::kWhole) {
        return;
    }
    ++losses.unreadableBlocks;
    if (block.outcome == FetchOutcome::kReadFailed) {
        job.system.log("ERROR", countBadRead(source, block.extent.offset));
        fillWithUnreadableMarker(block.bytes);
    }
}

bool cleanDestination(const CopyJob& job, const BlockOrder& order) {
    if (job.running == 0 || order.count() == 0) {
        return job.running == 1;
    }
    job.system.setDriveStatus(*job.state.destination, "Cleaning disk");
    job.system.cleanDestination();
    return job.running == 1;
}

void UpdateStatusText(const CopyJob& job, JobTiming& timing, std::int64_t blocksDone, std::int32_t& lastPercent,
                      const ProgressLook& look) {
    timing.done = blocksDone;
    const std::string remaining = EstimateRemainingTime(timing, job.system.tick());
    const std::int32_t percent = percentDone(timing.done, timing.total);
    if (percent != lastPercent) {
        lastPercent = percent;
        job.state.carX = carPosition(timing.done, timing.total, look.direction);
        job.display.repaintTrack(look.track);
        for (const DriveRecord* drive : look.drives) {
            job.system.setDriveStatus(*drive, driveProgressText(look.activity, percent));
        }
    }
    job.display.setStatus(statusLine(look.label, remaining, percent));
}

JobProgress::JobProgress(const CopyJob& job, const BlockOrder& order, ProgressLook look)
    : job_(job), look_(std::move(look)), timing_{.startTick = job.system.tick(),
                                                 .total = static_cast<std::int64_t>(order.fullBlocks())} {}

void JobProgress::update(std::uint64_t blocksDone) {
    UpdateStatusText(job_, timing_, static_cast<std::int64_t>(blocksDone), lastPercent_, look_);
}

void JobProgress::setDriveStatus(const std::string& text) const {
    for (const DriveRecord* drive : look_.drives) {
        job_.system.setDriveStatus(*drive, text);
    }
}

RunEnd moveBlocks(const CopyJob& job, BlockPipeline& blocks, JobProgress& progress, const BadBlockRule& rule,
                  const std::function<bool(const Block&)>& deal, const std::function<void()>& finished) {
    const std::uint64_t fullBlocks = blocks.order().fullBlocks();
    const auto giveUp = [&] {
        blocks.stop();
        return RunEnd::kGaveUp;
    };
    blocks.start();
    std::uint64_t done = 0;
    while (done < fullBlocks) {
        if (!deal(blocks.take())) {
            return giveUp();
        }
        if (stopsForBadBlocks(job, rule) || job.running == 0) {
            break;
        }
        // The block just moved is not counted yet, so the last one is never shown as 100 %.
        progress.update(done);
        ++done;
        if (finished) {
            finished();
        }
    }
    const bool remainderSkipped = blocks.order().hasRemainder() && job.running == 0;
    if (blocks.order().hasRemainder() && !remainderSkipped) {
        if (!deal(blocks.take())) {
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

std::string runOutcomeText(RunEnd end, const JobLosses& losses) {
    return driveOutcomeText(end == RunEnd::kWhole ? "" : kNotCompleted, losses);
}

void showFailure(const CopyJob& job, std::string_view status, int explosionMilliseconds) {
    job.state.failed = 1;
    job.display.setStatus(status);
    job.display.startExplosionTimer(explosionMilliseconds);
}

void showSuccess(const CopyJob& job, std::string_view status, std::int32_t carX) {
    job.state.carX = carX;
    job.state.succeeded = 1;
    job.display.setStatus(status);
}

void showNotStarted(const CopyJob& job, const DriveRecord& drive) {
    job.system.setDriveStatus(drive, driveOutcomeText("not started", {}));
}

void reportNoMemory(const CopyJob& job) {
    job.system.log("ERROR", "Could not ALLOCATE copy buffers");
}

} // namespace torvane
