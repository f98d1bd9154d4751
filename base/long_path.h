#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// From so many characters on Windows lets no path through that is not in the form for long ones: MAX_PATH (260) less
/// the twelve of a short file name, which a new folder has to leave room for.
inline constexpr std::size_t kLongPathFrom = 248;

/// Characters of the longest path that any call takes or gives, with its NUL.
inline constexpr std::uint32_t kLongestPath = 32768;

/// An absolute path, with backslashes and nothing to resolve, in the form in which the wide calls take up to 32767
/// characters: "\\?\C:\...", "\\?\UNC\server\share\...". One that is in that form, or names a device, stays.
[[nodiscard]] std::wstring longPathForm(std::wstring_view absolute);

} // namespace torvane
