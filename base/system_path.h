#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// A path of the program's texts for the system's wide calls, however long it is: one that would be too long as it
/// stands becomes absolute and gets the prefix for long paths (base/long_path.h), whether or not the system was told to
/// do without. Any other stays as it is.
[[nodiscard]] std::wstring systemPath(std::string_view path);
[[nodiscard]] std::wstring systemPath(const std::wstring& path);

} // namespace torvane
