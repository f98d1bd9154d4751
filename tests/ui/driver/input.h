#pragma once

#include "tests/ui/driver/window.h"

namespace torvane::driver {

// Input as a person gives it: through the system's input queue, at a place on the screen. What is disabled, hidden or
// covered does not get it; asked to press such a thing, these functions throw.

enum class MouseButton { kLeft, kRight };

/// Clicks a place on the screen, of which `window` must be the owner, and returns when the click was dealt with.
void clickAt(const Window& window, POINT place, MouseButton button = MouseButton::kLeft);

/// Presses a button, scrolled into sight where it is not, and returns when its command has run or has opened a modal
/// box.
void press(const Window& button);

/// Drags the mouse from one place of the screen to another, both of them in `window`, and returns when the release was
/// dealt with.
void drag(const Window& window, POINT from, POINT to);

/// Clicks a place on the screen whatever is there, for showing that nothing happens.
void clickBlindly(POINT place);

/// Moves the mouse to a place of the screen and leaves it there.
void hoverAt(POINT place);

/// Moves the mouse away to a corner of the screen, where it hovers over nothing.
void parkMouse();

/// Presses and releases a key of the keyboard, with `modifier` (0: none) held meanwhile. It goes to the window that has
/// the focus; returns when `window` has dealt with it.
void pressKey(const Window& window, WORD key, WORD modifier = 0);

/// Makes `window` the one that gets the keyboard.
void bringToFront(const Window& window);

/// The control with the keyboard's focus in the window's thread.
[[nodiscard]] Window focused(const Window& window);

} // namespace torvane::driver
