#pragma once

#include "copy/jobs/run_figures.h"
#include "ui/task_bar_button.h"

#include <algorithm>

namespace torvane {

/// What the task bar button shows of a run: an error as soon as something is lost.
[[nodiscard]] inline TaskBarProgress taskBarProgressOf(const RunFigures& run) {
    return {.state = hasFaults(run.losses) ? TaskBarState::kError : TaskBarState::kNormal,
            .done = run.total == 0 ? 1 : run.done,
            .total = std::max<std::uint64_t>(run.total, 1)};
}

/// What it shows once the job has ended: nothing any more, or the error at the place that the job has come to.
[[nodiscard]] inline TaskBarProgress taskBarProgressAtEnd(const TaskBarProgress& before, bool good) {
    if (good) {
        return {};
    }
    const bool shown = before.state != TaskBarState::kNone;
    return {.state = TaskBarState::kError, .done = shown ? before.done : 1, .total = shown ? before.total : 1};
}

} // namespace torvane
