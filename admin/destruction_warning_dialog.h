#pragma once

#include <windows.h>

namespace torvane {

struct AppState;
struct DriveRecord;

/// What is about to be overwritten, and why.
struct Destruction {
    const DriveRecord& drive;
    const char* caption;        ///< of the warning: the command that asks for it
    char sourceImageLetter = 0; ///< letter, upper case, of the volume that holds the image to be copied; 0: none does
};

/// Shows the drive and its volumes before they are overwritten. The volume table is filled anew for it. True for "Yes"
/// alone, and only while the drive is still the one that the scan found; a box tells when it is not. When the source
/// image is read from one of the volumes, a box says so instead and the answer is false. On the window's thread.
[[nodiscard]] bool confirmDestruction(AppState& state, const Destruction& destruction, HWND owner);

} // namespace torvane
