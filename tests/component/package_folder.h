#pragma once

#include <filesystem>

namespace torvane::testing {

/// The shippable folder: the program and everything that lies beside it.
[[nodiscard]] std::filesystem::path packageFolder();

/// Where the build has put the larger renderings for screens of `dpi` dots to the inch, which the program embeds.
[[nodiscard]] std::filesystem::path renderingsFolder(int dpi);

} // namespace torvane::testing
