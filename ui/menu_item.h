#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// A menu's item, or grey.
inline void enableMenuItem(HMENU menu, UINT id, bool enabled) {
    EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

inline void setMenuItemText(HMENU menu, UINT id, std::string text) {
    MENUITEMINFOA item{};
    item.cbSize = sizeof(item);
    item.fMask = MIIM_STRING;
    item.dwTypeData = text.data();
    SetMenuItemInfoA(menu, id, FALSE, &item);
}

} // namespace torvane
