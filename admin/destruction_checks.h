#pragma once

#include "admin/destruction_warning.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

// Drives and volumes that do not answer can be left (ui/waiting.h): that counts as a no.

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
    kNo,      ///< the user's, be it that he has left a check, or the warning's own when the image lies on the drive
    kRefused, ///< a box has told everything
};

/// What must hold before the warning opens: the source image does not lie on the drive, by whatever road it is reached,
/// and the drive is none that is never changed. A box tells what does not; kYes when all holds. On the window's thread.
[[nodiscard]] Confirmation checkDestruction(AppState& state, const Destruction& destruction);

/// What the warning shows that the system has to be asked for.
struct WarningFacts {
    std::vector<WarningRow> rows; ///< the drive and its volumes
    std::string note; ///< that Windows does not tell on which drive the source image lies; empty when it does
};

/// None when the user has left. On the window's thread.
[[nodiscard]] std::optional<WarningFacts> askForWarning(const AppState& state, const Destruction& destruction);

/// What must hold after its "Yes": the drive is still the one that the scan found. On the window's thread.
[[nodiscard]] Confirmation checkIdentity(AppState& state, const Destruction& destruction);

} // namespace torvane
