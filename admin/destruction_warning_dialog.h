#pragma once

#include "admin/destruction_checks.h"

#include <windows.h>

namespace torvane {

/// Shows the drive and its volumes before they are overwritten. The volume table is filled anew for it. kYes for "Yes"
/// alone, and only while all that `checkDestruction` and `checkIdentity` ask for holds; their boxes tell when it does
/// not. kNo as well when the user has left a drive or volume that does not answer. On the window's thread.
[[nodiscard]] Confirmation confirmDestruction(AppState& state, const Destruction& destruction, HWND owner);

} // namespace torvane
