#pragma once

#include "copy/engine/run_meter.h"
#include "copy/jobs/run_figures.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace torvane {

/// What stands in the field beside a copy dialog's status line: the words of losses, and in their place how far a run
/// is while one is under way. Told by the job, asked by the window's thread: it keeps neither of them waiting. Moments
/// are milliseconds.
class ProgressField {
  public:
    /// These words stand there from now on; `bad` when they tell of losses. Ends the run.
    void setWords(std::string words, bool bad);

    /// The first call begins a run.
    void showRun(const RunFigures& run, std::int64_t now);
    void endRun();

    struct Content {
        std::string text;
        bool bad = false; ///< it tells of losses

        bool operator==(const Content&) const = default;
    };
    [[nodiscard]] Content content(std::int64_t now) const;

    /// The run that is under way.
    [[nodiscard]] std::optional<RunFigures> run() const;

  private:
    struct Run {
        RunFigures figures;
        RunMeter meter;
        std::uint64_t before = 0; ///< bytes that were done when it was shown first
    };

    mutable std::mutex mutex_; ///< for everything below
    Content words_;
    std::optional<Run> run_;
};

} // namespace torvane
