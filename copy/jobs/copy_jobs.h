#pragma once

#include "copy/engine/block_layout.h"
#include "copy/engine/copy_system.h"
#include "copy/jobs/copy_job_state.h"
#include "copy/jobs/drive_status.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace torvane {

/// What a copy job works with.
struct CopyJob {
    CopyJobState& state;
    std::atomic<std::int32_t>& running; ///< 1 while the job runs; cleared by others to stop it
    CopySystem& system;
    JobDisplay& display;
    std::string destinationPath; ///< of an image: its folder; of an image to drive: the image itself
    std::size_t blockSize = kCopyBlockSize;
};

// The jobs, as they run on the calling thread. Each returns the thread's exit code: 1 after a normal end, 0 after an
// early failure.

[[nodiscard]] std::uint32_t runForwardClone(const CopyJob& job);
[[nodiscard]] std::uint32_t runReverseClone(const CopyJob& job);
[[nodiscard]] std::uint32_t runImageToFile(const CopyJob& job);
[[nodiscard]] std::uint32_t runForensicImage(const CopyJob& job);
[[nodiscard]] std::uint32_t runImageToDrive(const CopyJob& job);

/// Writes the hash file beside the image numbered `number`. One "ERROR" log row when it cannot be created.
void WriteHashFile(const CopyJob& job, const DriveRecord& source, const Md5Digest& digest, std::int32_t number);

/// How an imaging pass went, for its drive's "Status" cell.
struct ImagingAccount {
    bool whole = false; ///< every block of the drive is in the image, the remainder too
    JobLosses losses;
};

/// Reads the image anew and compares its digest with `digest`, the imaging pass's. Returns 1 when a comparison was made
/// and shown, 0 when it could not be made: once the verification has begun, the running flag then stays set. The
/// drive's "Status" cell tells the verdict, and with it what the imaging pass was short of.
int VerifyImageHash(const CopyJob& job, const std::string& imageName, const Md5Digest& digest,
                    const ImagingAccount& imaging);

} // namespace torvane
