#pragma once

#include "copy/jobs/copy_job.h"
#include "copy/jobs/image_number.h"

#include <memory>

namespace torvane {

struct NewImage {
    ImageFileName name;
    std::unique_ptr<ImageFile> file; ///< null when it cannot be created
};

/// Numbers are tried one after the other until one is free, but no more than these: a counter that cannot be kept, or
/// that goes round at its largest number, must not be followed for ever.
inline constexpr int kMostNumbersTried = 10000;

/// Creates the job's image under the first number that no image has, and nothing that lies beside one: what exists is
/// never overwritten. Each number that is tried moves the counter on. Nothing is created when no number is free; one
/// "ERROR" row tells it.
[[nodiscard]] NewImage createNumberedImage(const CopyJob& job, const DriveRecord& source);

} // namespace torvane
