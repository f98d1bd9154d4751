#pragma once

#include "base/scale.h"

#include <windows.h>

namespace torvane {

/// How far a window's content is scrolled to the right and down; {0, 0} without scroll bars. May be asked from any
/// thread.
[[nodiscard]] POINT scrolledBy(HWND window);

/// Where a place of a window's content shows in its client area: scaled, and scrolled.
[[nodiscard]] RECT shownPlace(HWND window, const PixelRect& at96);

/// What a window, frame and all, may take: its monitor's work area.
[[nodiscard]] RECT workAreaOf(HWND window);

/// What a window has around its client area when it has no scroll bars.
[[nodiscard]] PixelSize frameOf(HWND window);

/// Gives the window's client area the size of its content, or as much of it as the work area has room for, with scroll
/// bars. Where the window stands does not change. Its children stay where they are: place them anew.
void fitToContent(HWND window, const PixelSize& content);

/// The same without scroll bars of ours: what has no room does not show.
void fitToRoom(HWND window, const PixelSize& content);

/// Moves the window into its work area, as far as it fits.
void keepInWorkArea(HWND window);

/// Scrolls the window by its scroll bars and the wheel. False when the message is none of theirs.
bool scrollBy(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// From now on a control that gets the keyboard is scrolled into view, and so is the one that has it. To be called
/// again when there are new controls.
void followFocus(HWND window);

} // namespace torvane
