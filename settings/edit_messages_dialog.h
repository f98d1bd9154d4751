#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Lets the user edit the texts of the advice messages; returns when the dialog is closed.
void editMessages(AppState& state, HWND owner);

} // namespace torvane
