#pragma once

#include "copy/engine/block_pipeline.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/copy_progress.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

// What the verification behind a forensic image and that of an image of some day have in common.

/// Digests of the image, of the kinds that are known, as far as it is read before somebody asks to stop. None, and the
/// user was told, when they could not be made: `beforeBox` is called first. `stopped`, where it is given, tells whether
/// somebody has asked to stop before the whole image was read.
[[nodiscard]] std::optional<Digests> digestsOfImage(
    const CopyJob& job, BlockPipeline& blocks, CopyProgress& progress, const Digests& known,
    const std::function<void()>& beforeBox = [] {}, bool* stopped = nullptr);

/// Whether every digest that is known is the one that was made.
[[nodiscard]] bool agree(const Digests& known, const Digests& made);

/// The box of a comparison that was made, behind two lines with the MD5s, where one is known, on the standard output.
void showVerdict(const CopyJob& job, const Digests& known, const Digests& made);

/// One row of the log file.
void logVerification(const CopyJob& job, const std::string& imageName, std::string_view state);

} // namespace torvane
