#pragma once

#include <windows.h>

namespace torvane {

/// Shows the tutorial over `owner` when its file says so, and returns when the user has closed it.
void ShowTutorialIfWanted(HWND owner);

/// Shows it whatever its file says.
void showTutorial(HWND owner);

} // namespace torvane
