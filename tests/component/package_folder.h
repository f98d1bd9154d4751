#pragma once

#include <filesystem>

namespace torvane::testing {

/// The shippable folder: the program and everything that lies beside it.
[[nodiscard]] std::filesystem::path packageFolder();

} // namespace torvane::testing
