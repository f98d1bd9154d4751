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
    kVerifyImage
};

/// What one copy is told to do. Its dialog makes it, and it goes along with the copy's thread.
struct CopyOrder {
    CopyKind kind;
    DriveRecord* source = nullptr;      ///< of a clone or an image
    DriveRecord* destination = nullptr; ///< of a clone or an image to drive
    std::string path;        ///< the folder that an image goes to; of an image to drive or a verification, the image
    bool alsoSha256 = false; ///< a forensic image gets a SHA-256 digest beside its MD5
    Digests known{};         ///< what the image of a verification is compared with
    CaseInformation caseInformation{}; ///< of a forensic image
    bool verifyAfterwards = false;     ///< a drive that was written is compared with its source
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
    case CopyKind::kVerifyImage:
        break;
    }
    return JobKind::kVerifyImage;
}

} // namespace torvane
