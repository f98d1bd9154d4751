#pragma once

#include "copy/engine/block_hasher.h"
#include "jobs/job_kind.h"
#include "records/case_information.h"

#include <cstdint>
#include <string>

namespace torvane {

struct DriveRecord;

enum class CopyKind : std::uint8_t {
    kForwardClone,
    kReverseClone,
    kImageToFile,
    kForensicImage,
    kImageToDrive,
    kVerifyImage,
    kRescue,
};

/// How a drive is rescued.
struct RescueChoice {
    bool goOn = false; ///< with the image, or the destination, that an earlier rescue or copy has left with its map
    unsigned retryPasses = 0; ///< 0 to 9
    bool fromEnd = false;
};

/// What one copy is told to do. Its dialog makes it, and it goes along with the copy's thread.
struct CopyOrder {
    CopyKind kind;
    DriveRecord* source = nullptr;      ///< of a clone, an image or a rescue
    DriveRecord* destination = nullptr; ///< of a clone or an image to drive; of a rescue onto a drive
    /// The folder that an image goes to; of an image to drive, a verification or a rescue that goes on, the image.
    std::string path;
    bool alsoSha256 = false;           ///< a forensic image gets a SHA-256 digest beside its MD5
    Digests known{};                   ///< what the image of a verification is compared with
    CaseInformation caseInformation{}; ///< of a forensic image
    bool verifyAfterwards = false;     ///< a drive that was written is compared with its source
    RescueChoice rescue{};
};

[[nodiscard]] constexpr JobKind jobKindOf(CopyKind kind) {
    switch (kind) {
    case CopyKind::kForwardClone:
    case CopyKind::kReverseClone:
        return JobKind::kClone;
    case CopyKind::kImageToFile:
        return JobKind::kImage;
    case CopyKind::kForensicImage:
        return JobKind::kForensicImage;
    case CopyKind::kImageToDrive:
        return JobKind::kImageToDrive;
    case CopyKind::kRescue:
        return JobKind::kRescue;
    case CopyKind::kVerifyImage:
        break;
    }
    return JobKind::kVerifyImage;
}

} // namespace torvane
