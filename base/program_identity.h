#pragma once

namespace torvane {

/// "1.2", as the program's resource tells it.
[[nodiscard]] const char* programVersion();

/// The commit that the program was built from, "unknown" where it was not built from a repository.
[[nodiscard]] const char* programBuild();

} // namespace torvane
