#include "copy/jobs/copy_progress.h"

#include "base/format.h"
#include "copy/jobs/track.h"
#include "records/drive_texts.h"

#include <algorithm>
#include <cinttypes>
#include <utility>

namespace torvane {

namespace {

/// Far beyond any job, and far below what 64 bits hold.
constexpr double kMaxSecondsLeft = 1e15;

double fractionDone(std::int64_t done, std::int64_t total) {
    return total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
}

} // namespace

std::string EstimateRemainingTime(const JobTiming& timing, std::int64_t nowTick) {
    const std::int64_t elapsed = (nowTick - timing.startTick) / 1000;
    if (elapsed <= 0 || timing.done <= 0) {
        return "00:00:00";
    }
    const double secondsPerBlock = static_cast<double>(elapsed) / static_cast<double>(timing.done);
    const double left =
        std::clamp(secondsPerBlock * static_cast<double>(timing.total - timing.done), 0.0, kMaxSecondsLeft);
    const auto hours = static_cast<std::int64_t>(left / 3600);
    const double rest = left - static_cast<double>(hours * 3600);
    const auto minutes = static_cast<std::int64_t>(rest / 60);
    const std::int64_t seconds = static_cast<std::int64_t>(rest) - minutes * 60;
    return formatText("%02" PRId64 ":%02" PRId64 ":%02" PRId64, hours, minutes, seconds);
}

std::int32_t percentDone(std::int64_t done, std::int64_t total) {
    return static_cast<std::int32_t>(fractionDone(done, total) * 100);
}

std::int32_t carPosition(std::int64_t done, std::int64_t total, CopyDirection direction) {
    const auto driven = static_cast<std::int32_t>(kTrackLength * fractionDone(done, total));
    return direction == CopyDirection::kForward ? kTrackStartX + driven : kTrackFinishX - driven;
}

std::string statusLine(std::string_view label, std::string_view remaining, std::int32_t percent) {
    const std::string percentText = formatText("%%%d", percent);
    return std::string(label).append(": ").append(remaining).append(" -- ").append(percentText);
}

void UpdateStatusText(const CopyJob& job, JobTiming& timing, std::int64_t blocksDone, std::int32_t& lastPercent,
                      const ProgressLook& look) {
    timing.done = blocksDone;
    const std::string remaining = EstimateRemainingTime(timing, job.system.tick());
    const std::int32_t percent = percentDone(timing.done, timing.total);
    if (percent != lastPercent) {
        lastPercent = percent;
        job.track.carX = carPosition(timing.done, timing.total, look.direction);
        job.display.repaintTrack(look.track);
        for (const DriveRecord* drive : look.drives) {
            job.system.setDriveStatus(*drive, driveProgressText(look.activity, percent));
        }
    }
    job.display.setStatus(statusLine(look.label, remaining, percent));
}

CopyProgress::CopyProgress(const CopyJob& job, const BlockOrder& order, ProgressLook look)
    : job_(job), look_(std::move(look)), timing_{.startTick = job.system.tick(),
                                                 .total = static_cast<std::int64_t>(order.fullBlocks())},
      bytesTotal_(order.byteCount()) {}

void CopyProgress::count(std::uint64_t bytes) {
    bytesDone_ += bytes;
    showRun();
}

void CopyProgress::showRun() const {
    job_.display.showRun(
        {.done = bytesDone_, .total = bytesTotal_, .losses = look_.losses != nullptr ? *look_.losses : JobLosses{}});
}

void CopyProgress::update(std::uint64_t blocksDone) {
    UpdateStatusText(job_, timing_, static_cast<std::int64_t>(blocksDone), lastPercent_, look_);
}

void CopyProgress::setDriveStatus(const std::string& text) const {
    for (const DriveRecord* drive : look_.drives) {
        job_.system.setDriveStatus(*drive, text);
    }
}

} // namespace torvane
