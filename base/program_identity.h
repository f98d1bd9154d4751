#pragma once

namespace torvane {

/// "1.2.0", as the program's resource tells it.
[[nodiscard]] const char* programVersion();

/// The commit that the program was built from, "0123456789ab", with "-modified" behind it when files of the repository
/// differed; "unknown" where it was not built from a repository.
[[nodiscard]] const char* programBuild();

} // namespace torvane
