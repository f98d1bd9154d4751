#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Shows the state's destination drive (`copy.destination`) and its volumes before they are overwritten, under the
/// caption `copy.warningCaption`. True for "Yes" alone. When a source image is read from one of these volumes
/// (`copy.sourceImageLetter`), a box says so instead and the answer is false. On the window's thread.
[[nodiscard]] bool confirmDestruction(AppState& state, HWND owner);

} // namespace torvane
