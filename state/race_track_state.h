#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace torvane {

/// What the race track of a copy job shows.
///
/// The job's thread writes, the dialog's thread reads to paint. It outlives the job: everything stays as a job left it
/// until the next one starts or the dialog closes, and the direction even longer, because the track of an image to
/// drive follows the last clone.
struct RaceTrackState {
    std::atomic<std::int32_t> failed{0};         ///< 1: ended badly; shows the explosion
    std::atomic<std::int32_t> explosionFrame{0}; ///< only ever cleared, so the explosion repeats
    std::atomic<std::int32_t> succeeded{0};      ///< 1: completed; shows the trophy or the court house
    std::atomic<std::int32_t> reverse{0};        ///< "Use Reverse Clone" when the last clone was started
    std::atomic<std::int32_t> carX{0};           ///< the vehicle's place, see copy/jobs/track.h
    std::atomic<std::int32_t> carY{0};

    std::atomic<std::int64_t> animationBlocks{0}; ///< forensic image: full blocks finished

    /// Forensic image: the full blocks that make 10, 30, 40, 50 and 75 percent.
    std::array<std::atomic<std::int64_t>, 5> chasePoints{};
};

} // namespace torvane
