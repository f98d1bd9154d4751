#include "copy/jobs/rescue_watch.h"

#include "base/format.h"
#include "copy/jobs/copy_progress.h"
#include "copy/jobs/rescue_words.h"
#include "records/drive_texts.h"

#include <algorithm>
#include <utility>

namespace torvane {

std::function<bool()> WantedSource::patience() const {
    return [this, unwantedSince = std::optional<std::int64_t>()]() mutable {
        constexpr std::int64_t kPatienceMilliseconds = 3000;
        if (job_.claim.isRaised()) {
            return true;
        }
        const std::int64_t now = job_.system.tick();
        unwantedSince = unwantedSince.value_or(now);
        return now - *unwantedSince < kPatienceMilliseconds;
    };
}

SourceAnswer WantedSource::read(std::uint64_t offset, std::span<std::byte> bytes) {
    return drive_.read(offset, bytes, patience());
}

bool WantedSource::awaitReturn() {
    if (!job_.claim.isRaised()) {
        return false; // a read was left, because nobody wants the rescue any longer
    }
    const std::string drive = jobDriveText(*job_.order.source);
    job_.system.logError("Rescue: " + drive + " does not answer any more. It is waited for");
    job_.display.setStatus(" The drive has gone. Waiting for it");
    bool told = false;
    while (job_.claim.isRaised()) {
        const bool found = drive_.findAgain(patience());
        if (found && isTheSource_()) {
            job_.system.logError("Rescue: " + drive + " is back. The rescue goes on");
            return true;
        }
        if (found && !std::exchange(told, true)) {
            job_.system.logError("Rescue: a drive that tells the same as " + drive +
                                 " is there, and is not what was copied. The rescue does not go on with it");
            job_.display.setStatus(" The drive that is back is not what was copied. Waiting");
        }
        job_.rescue->pause();
    }
    return false;
}

bool JobWatch::isWanted() {
    constexpr int kMostUnsaved = 2;
    lostItsMap_ = lostItsMap_ || unsaved_ >= kMostUnsaved;
    return job_.claim.isRaised() && !lostItsMap_;
}

bool JobWatch::saveMap(const SourceMap&, const MapStatus& status) {
    account_.evidence.rescue = RescuePlace{.status = status, .fromEnd = job_.order.rescue.fromEnd};
    const bool saved = torvane::saveMap(job_, account_);
    unsaved_ = saved ? 0 : unsaved_ + 1;
    return saved;
}

void JobWatch::show(const RescueFigures& figures, const SourceMap& map) {
    constexpr std::int64_t kBetweenPictures = 250; // milliseconds
    const std::int64_t moment = now();
    if (!shownAt_ || moment - *shownAt_ >= kBetweenPictures) {
        shownAt_ = moment;
        showNow(figures, map);
    }
}

void JobWatch::showNow(const RescueFigures& figures, const SourceMap& map) {
    tell(figures, map, figures.step.offset);
}

void JobWatch::showEnd(const RescueFigures& figures, const SourceMap& map) {
    tell(figures, map, std::nullopt);
}

void JobWatch::tell(const RescueFigures& figures, const SourceMap& map, std::optional<std::uint64_t> place) {
    job_.display.showRescue(
        {.figures = figures, .picture = layOutRescuePicture(map, place, kRescueStripWidth, kRescueStripHeight)});
    most_ = std::max(most_, map.bytes(RangeStatus::kFinished));
    job_.display.showRun({.done = most_, .total = map.size(), .losses = account_.losses});
    const std::string step = rescueStepInWords(figures.step);
    job_.display.setStatus(
        " " + step +
        formatText(": %d %%", percentDone(static_cast<std::int64_t>(most_), static_cast<std::int64_t>(map.size()))));
    job_.system.setDriveStatus(*job_.order.source, "Rescue: " + step);
}

} // namespace torvane
