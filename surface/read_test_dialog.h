#pragma once

#include "surface/read_test_kind.h"

#include <windows.h>

namespace torvane {

struct AppState;

/// The commands of the three read tests: a box when no drive is active, otherwise the dialog of the test. Returns when
/// the dialog is closed; a test may still be running then.
void RunReadTestDialog(AppState& state, HWND owner, ReadTestKind kind);

} // namespace torvane
