#pragma once

#include "copy/engine/block_layout.h"
#include "copy/jobs/copy_order.h"
#include "copy/jobs/copy_system.h"
#include "copy/jobs/drive_status.h"
#include "copy/jobs/job_display.h"
#include "discovery/drive_io.h"
#include "jobs/jobs.h"
#include "state/race_track_state.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace torvane {

class RescueSystem;

/// What a copy job works with.
struct CopyJob {
    const CopyOrder& order;
    JobClaim& claim; ///< its flag is up while the job runs; lowered by others to stop it
    RaceTrackState& track;
    DriveIo& drives;
    CopySystem& system;
    JobDisplay& display;
    OpenImages& keptImages; ///< images that stay open until the program ends
    std::size_t blockSize = kCopyBlockSize;
    RescueSystem* rescue = nullptr; ///< of a rescue alone
};

// The jobs, as they run on the calling thread. Each returns the thread's exit code: 1 after a normal end, 0 after an
// early failure.

[[nodiscard]] std::uint32_t runForwardClone(const CopyJob& job);
[[nodiscard]] std::uint32_t runReverseClone(const CopyJob& job);
[[nodiscard]] std::uint32_t runImageToFile(const CopyJob& job);
[[nodiscard]] std::uint32_t runForensicImage(const CopyJob& job);
[[nodiscard]] std::uint32_t runImageToDrive(const CopyJob& job);
[[nodiscard]] std::uint32_t runVerifyImage(const CopyJob& job);
[[nodiscard]] std::uint32_t runRescueJob(const CopyJob& job);

/// Writes the hash file beside the image numbered `number`. One "ERROR" log row when it cannot be created.
void WriteHashFile(const CopyJob& job, const DriveRecord& source, const Md5Digest& digest, std::int32_t number);

/// The same with the image's SHA-256, for `sha256sum -c`.
void writeSha256File(const CopyJob& job, const std::string& imagePath, const Sha256Digest& digest);

/// How an imaging pass went, for its drive's "Status" cell.
struct ImagingAccount {
    bool whole = false; ///< every block of the drive is in the image, the remainder too
    JobLosses losses;
    /// Told how the verification has ended, "verified", before any box does.
    std::function<void(std::string_view)> tellOutcome = [](std::string_view) {};
};

/// Reads the image anew and compares its digests with those of the imaging pass, all of which have to agree. Returns 1
/// when a comparison was made and shown, 0 when it could not be made: once the verification has begun, the job's flag
/// then stays up. The drive's "Status" cell tells the verdict, and with it what the imaging pass was short of.
int VerifyImageHash(const CopyJob& job, const std::string& imageName, const Digests& digests,
                    const ImagingAccount& imaging);

} // namespace torvane
