#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Shows the state's destination drive (`copy.destination`) and its volumes before they are overwritten, under the
/// caption `copy.warningCaption`. The volume table is filled anew for it. True for "Yes" alone, and only while the
/// drive is still the one that the scan found; a box tells when it is not. When a source image is read from one of the
/// volumes (`copy.sourceImageLetter`), a box says so instead and the answer is false. On the window's thread.
[[nodiscard]] bool confirmDestruction(AppState& state, HWND owner);

} // namespace torvane
