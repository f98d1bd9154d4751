#pragma once

#include <string>

namespace torvane::bench {

/// What diskpart prints on a German Windows in place of `text`, its English output, in code page 850, as a console's
/// tool writes into a file.
[[nodiscard]] std::string diskpartInGerman(std::string text);

} // namespace torvane::bench
