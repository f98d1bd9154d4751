#pragma once

#include <cstdint>
#include <string>

namespace torvane {

struct AppState;
struct DriveRecord;

/// What is about to be overwritten, and why.
struct Destruction {
    const DriveRecord& drive;
    const char* caption;     ///< of the warning: the command that asks for it
    std::string sourceImage; ///< path of the image that is to be copied; empty: no image takes part
};

enum class Confirmation : std::uint8_t {
    kYes,
    kNo,      ///< the user's, or the warning's own when the image lies on the drive
    kRefused, ///< a box has told everything
};

/// What must hold before the warning opens: the source image does not lie on the drive, by whatever road it is reached,
/// and the drive is none that is never changed. A box tells what does not; kYes when all holds. On the window's thread.
[[nodiscard]] Confirmation checkDestruction(AppState& state, const Destruction& destruction);

/// What the warning adds when Windows does not tell on which drive the source image lies; empty when it does.
[[nodiscard]] std::string imagePlaceNote(const AppState& state, const Destruction& destruction);

/// What must hold after its "Yes": the drive is still the one that the scan found.
[[nodiscard]] Confirmation checkIdentity(AppState& state, const Destruction& destruction);

} // namespace torvane
