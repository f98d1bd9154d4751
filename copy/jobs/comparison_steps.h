#pragma once

#include "copy/engine/block_layout.h"
#include "copy/engine/block_source.h"
#include "copy/jobs/comparison.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/copy_progress.h"
#include "copy/jobs/copy_range.h"
#include "copy/jobs/copy_steps.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// A copy onto the order's destination, with everything on the medium, that is to be compared with its source.
struct FinishedCopy {
    BlockSource& source; ///< read as it was copied, from its start
    const CopyRange& range;
    BlockOrder order;                               ///< as it was copied
    std::function<bool(const BlockExtent&)> isLost; ///< the source could not be read there; empty: it could everywhere
    CopyDirection direction = CopyDirection::kForward;
    const JobLosses& losses; ///< of the copy, to be shown meanwhile
};

/// After a run over the blocks whose end is still to be shown: compares where the user wants it and the run moved its
/// full blocks. One that somebody asked to stop meanwhile is not compared, and counts as a comparison that was stopped.
[[nodiscard]] std::optional<Comparison> compareIfWanted(const CopyJob& job, RunEnd end,
                                                        const std::function<Comparison()>& compare);

/// Reads source and destination again, both ahead, and compares them block by block; shown as a second pass of the job.
/// Nothing is read where the source could not be read the first time: a failing drive is not pushed once more.
[[nodiscard]] Comparison compareWithSource(const CopyJob& job, const FinishedCopy& copy);

/// The status line of a copy that was refuted.
inline constexpr std::string_view kNotVerified = " Copy NOT verified";

/// The "Status" cell of a copy that may have been compared: as `runOutcomeText` has it, with a word of the comparison.
[[nodiscard]] std::string copyOutcomeText(RunEnd end, const JobLosses& losses,
                                          const std::optional<Comparison>& comparison);

/// Tells the user in a box how the order's copy compares.
void showComparison(const CopyJob& job, const Comparison& comparison);

} // namespace torvane
