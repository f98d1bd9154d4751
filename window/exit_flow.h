#pragma once

namespace torvane {

struct AppState;

/// Everything that stands between "Exit Torvane" and the end of the window: asks for confirmation, asks a running job
/// to stop, and offers to enable automatic mounting when it is disabled. False when the user stays. Waits for diskpart
/// on the calling thread.
[[nodiscard]] bool confirmExit(AppState& state);

} // namespace torvane
