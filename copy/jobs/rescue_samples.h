#pragma once

#include "copy/evidence/source_map.h"
#include "copy/jobs/copy_job.h"
#include "copy/rescue/rescue_system.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace torvane {

/// Reads bytes of a copy. False when it could not.
using CopyReader = std::function<bool(std::uint64_t offset, std::span<std::byte> bytes)>;

/// What a few sectors tell of a copy.
enum class SampleVerdict : std::uint8_t {
    kSame,       ///< those that could be compared, and that tell anything, agree
    kMostlySame, ///< a few do not, and far more do: a place or two was written to
    kOther,      ///< too many do not, or the very first does not, which a clean or a new partition table has changed
    kNotTold, ///< none could be compared that tells anything; a map without anything finished has nothing to tell: same
    kGone,    ///< the drive does not answer any more, or nobody wants to wait for it
};

/// What was compared.
struct Samples {
    SampleVerdict verdict = SampleVerdict::kSame;
    std::vector<std::uint64_t> unequal; ///< where sectors begin that differ, in bytes, ascending
};

/// Compares sectors that the map calls finished: those at the start, ever farther from each other, some over the whole
/// of the drive, and the last one. A copy may have been written to since, or another one, or another drive, may stand
/// in its place. A sector of one repeated byte tells nothing: so do many of any drive.
[[nodiscard]] Samples compareSamples(const CopyJob& job, RescueDrive& drive, const SourceMap& map,
                                     const CopyReader& readCopy);

} // namespace torvane
