#pragma once

#include <windows.h>

namespace torvane {

/// Calls the user to work that has ended: the system's sound for what is done or what went wrong, and where no window
/// of the program is in front, the task bar button of `window` flashes until one is.
void callUserTo(HWND window, bool good);

/// The user is there: nothing flashes any more.
void endUserCall(HWND window);

} // namespace torvane
