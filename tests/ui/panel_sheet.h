#pragma once

#include "tests/ui/driver/picture.h"
#include "tests/ui/torvane_window.h"

namespace torvane::driver {

/// A picture of all health panels: for each drive of the list its row and, below it, the panel that a click on the row
/// brings up. Leaves the last drive active.
[[nodiscard]] Picture healthPanelSheet(const TorvaneWindow& torvane);

} // namespace torvane::driver
