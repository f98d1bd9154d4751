#include "copy/dialogs/progress_field.h"

#include <utility>

namespace torvane {

void ProgressField::setWords(std::string words, bool bad) {
    const std::lock_guard lock(mutex_);
    words_ = {.text = std::move(words), .bad = bad};
    run_.reset();
}

void ProgressField::showRun(const RunFigures& run, std::int64_t now) {
    const std::lock_guard lock(mutex_);
    if (!run_) {
        run_.emplace(Run{.figures = {}, .meter = RunMeter(now), .before = run.done});
    }
    run_->figures = run;
    run_->meter.count(now, run.done - run_->before);
}

void ProgressField::endRun() {
    const std::lock_guard lock(mutex_);
    run_.reset();
}

ProgressField::Content ProgressField::content(std::int64_t now) const {
    const std::lock_guard lock(mutex_);
    if (!run_) {
        return words_;
    }
    return {.text = runInWords(run_->figures, run_->meter.bytesPerSecond(now), run_->meter.elapsedSeconds(now)),
            .bad = hasFaults(run_->figures.losses)};
}

std::optional<RunFigures> ProgressField::run() const {
    const std::lock_guard lock(mutex_);
    return run_ ? std::optional(run_->figures) : std::nullopt;
}

} // namespace torvane
