#pragma once

#include <windows.h>

namespace torvane {

/// A menu's item, or grey.
inline void enableMenuItem(HMENU menu, UINT id, bool enabled) {
    EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

} // namespace torvane
