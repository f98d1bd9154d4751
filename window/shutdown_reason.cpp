#include "window/shutdown_reason.h"

#include <array>

namespace torvane {

namespace {

struct ReasonOfKind {
    JobKind kind;
    const char* reason; ///< ASCII, below the 256 characters that the system shows
};

// Whose end would cost most comes first.
constexpr std::array kReasons{
    ReasonOfKind{JobKind::kClone, "A drive is being cloned."},
    ReasonOfKind{JobKind::kRescue, "A failing drive is being rescued."},
    ReasonOfKind{JobKind::kImageToDrive, "A drive is being written from an image."},
    ReasonOfKind{JobKind::kForensicImage, "A forensic image of a drive is being made or verified."},
    ReasonOfKind{JobKind::kImage, "An image of a drive is being made."},
    ReasonOfKind{JobKind::kVerifyImage, "An image is being verified."},
    ReasonOfKind{JobKind::kDiskChange, "A disk is being changed."},
    ReasonOfKind{JobKind::kNistTest, "A read test is at work."},
    ReasonOfKind{JobKind::kCriticalTest, "A read test is at work."},
    ReasonOfKind{JobKind::kShortTest, "A read test is at work."},
    ReasonOfKind{JobKind::kScan, "The drives are being scanned."},
};

} // namespace

const char* shutdownReason(JobKinds atWork) {
    for (const ReasonOfKind& row : kReasons) {
        if (atWork.contains(row.kind)) {
            return row.reason;
        }
    }
    return nullptr;
}

} // namespace torvane
