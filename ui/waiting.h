#pragma once

#include <functional>

namespace torvane::waiting {

// What takes as long as a tool or a drive takes, on a thread of its own, while the window goes on answering. Like the
// boxes these are plain functions, which tests define without a window.

/// Runs `work` on another thread and returns when it has ended, or when the user has left: false then. On the window's
/// thread. `what` is who is waited for, as the user reads it: "PowerShell".
///
/// Meanwhile the windows are painted and answer messages; the cursor says that the program waits, and after two seconds
/// a strip over the window says for whom, with a button "Leave". Commands by which a user gets out (`isWayOut` of the
/// dialog) leave as well, and follow when this has returned, behind whatever box opens then; other commands that come
/// while the strip is there are dropped, as it says.
///
/// Who leaves ends the tool that `work` runs at the moment (base/tool_watch.h); where something else holds it, it goes
/// on alone. So `work` owns, or shares, all that it uses.
[[nodiscard]] bool run(const char* what, std::function<void()> work);

} // namespace torvane::waiting
