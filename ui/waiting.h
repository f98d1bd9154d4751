#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

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

/// The same for work that has a result, which it is asked for on the other thread; none when the user has left.
template <typename Work>
[[nodiscard]] auto resultOf(const char* what, Work work) -> std::optional<std::invoke_result_t<Work&>> {
    // Shared, because work that is left goes on alone.
    const auto result = std::make_shared<std::optional<std::invoke_result_t<Work&>>>();
    return run(what, [result, work = std::move(work)]() mutable { *result = work(); }) ? std::move(*result)
                                                                                       : std::nullopt;
}

} // namespace torvane::waiting
