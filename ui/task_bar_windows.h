#pragma once

#include "ui/task_bar_button.h"

#include <windows.h>

namespace torvane {

/// The program's one button, that of its main window.
[[nodiscard]] TaskBarButton& taskBarButton();

/// The message by which the system tells a window that its button is there.
[[nodiscard]] UINT taskBarButtonMessage();

/// Lets this message through to the window, of a task bar that runs with fewer rights than the program, too.
void awaitTaskBarButton(HWND window);

/// The task bar, for the button of `window`. Null where the system has none that shows progress.
[[nodiscard]] std::unique_ptr<TaskBar> openTaskBar(HWND window);

} // namespace torvane
