#pragma once

#include "jobs/job_kind.h"

#include <cstdint>
#include <string>

namespace torvane {

struct DriveRecord;

enum class CopyKind : std::uint8_t { kForwardClone, kReverseClone, kImageToFile, kForensicImage, kImageToDrive };

/// What one copy is told to do. Its dialog makes it, and it goes along with the copy's thread.
struct CopyOrder {
    CopyKind kind;
    DriveRecord* source = nullptr;      ///< of a clone or an image
    DriveRecord* destination = nullptr; ///< of a clone or an image to drive
    std::string path;                   ///< the folder that an image goes to; of an image to drive, the image itself
    bool alsoSha256 = false;            ///< a forensic image gets a SHA-256 digest beside its MD5
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
        break;
    }
    return JobKind::kImageToDrive;
}

} // namespace torvane
