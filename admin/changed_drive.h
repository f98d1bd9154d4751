#pragma once

#include <string>
#include <string_view>

namespace torvane {

// What a box says when a disk is not the one that was loaded any more.

inline constexpr const char* kDriveHasChanged = "***** DRIVE HAS CHANGED *****";

/// `role` is what the drive was to the job: "DESTINATION", "SOURCE". `untouched` says what was not done to it, a whole
/// sentence without its full stop.
[[nodiscard]] std::string changedDriveText(std::string_view role, std::string_view untouched = "Nothing was written");

} // namespace torvane
