#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace torvane {

/// Outside text as a part of a Windows file name: at most its first `limit` bytes, with every character that such a
/// name cannot hold replaced by '_' (Win32, "Naming Files, Paths, and Namespaces"). Other text comes back as it is.
/// What stands around the part must keep it from being a name of its own.
[[nodiscard]] std::string fileNamePart(std::string_view text, std::size_t limit);

/// The name of a file without its folder.
[[nodiscard]] std::string_view fileNameOf(std::string_view path);

} // namespace torvane
