#pragma once

#include <windows.h>

namespace torvane::driver {

[[nodiscard]] RECT wholeScreen();

/// Prepares the screen for programs that are driven, and this process for its real pixels; throws when it is too small
/// for them.
///
/// Under Wine the program's windows get their frames from Wine itself, whatever window manager the screen has or lacks,
/// and never wait for one. That setting lasts until Wine's server ends. On Windows it has no meaning.
void prepareScreen();

} // namespace torvane::driver
