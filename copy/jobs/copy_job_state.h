#pragma once

#include "base/fixed_text.h"
#include "copy/engine/image_file.h"
#include "copy/jobs/job_display.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace torvane {

struct DriveRecord;

/// The copy jobs' share of the application state. A job's running flag is `AppState::jobActive`.
///
/// The job's thread writes, the dialog's thread reads to paint. All flags stay as a job left them until the next job
/// starts or the dialog closes.
struct CopyJobState {
    std::atomic<std::int32_t> failed{0};         ///< 1: ended badly; shows the explosion
    std::atomic<std::int32_t> explosionFrame{0}; ///< only ever cleared, so the explosion repeats
    std::atomic<std::int32_t> succeeded{0};      ///< 1: completed; shows the trophy or the court house
    std::atomic<std::int32_t> reverse{0};        ///< "Use Reverse Clone" when the last clone was started
    std::atomic<std::int32_t> carX{0};           ///< the vehicle's place, see copy/jobs/track.h
    std::atomic<std::int32_t> carY{0};

    std::atomic<DriveRecord*> source{nullptr};      ///< of a clone: chosen in the main window
    std::atomic<DriveRecord*> destination{nullptr}; ///< of a clone or an image to drive; null when none is chosen
    std::atomic<DriveRecord*> imageSource{nullptr}; ///< of an image, forensic or not: a slot of its own

    std::atomic<std::int64_t> animationBlocks{0}; ///< forensic image: full blocks finished

    /// Forensic image: the full blocks that make 10, 30, 40, 50 and 75 percent.
    std::array<std::atomic<std::int64_t>, 5> chasePoints{};

    /// 1 once "Terminate" or "Exit" was pressed since the job's start. A job looks when it raises its running flag:
    /// before, there was no flag to clear.
    std::atomic<std::int32_t> stopAsked{0};

    /// Set before a job is started. Null: nothing is shown.
    std::atomic<JobDisplay*> display{nullptr};

    char sourceImageLetter = 0; ///< letter, upper case, of the volume that holds the image to be copied; 0: none does

    /// Images that a job leaves open until the program ends. The job's thread alone uses them.
    std::vector<std::unique_ptr<ImageFile>> openImages;
};

} // namespace torvane
