#pragma once

#include <windows.h>

namespace torvane {

/// Waits for the handle, a process's or another that stays signalled, to be signalled, at most so many milliseconds (or
/// INFINITE), and meanwhile answers what other threads send to windows of this one; posted messages, timers and
/// painting stay where they are. True: signalled.
[[nodiscard]] bool awaitAnswering(HANDLE handle, DWORD milliseconds);

/// Lets that time go by, answering in the same way.
void pauseAnswering(DWORD milliseconds);

} // namespace torvane
