#pragma once

#include <string>
#include <string_view>

namespace torvane {

// What a box says when a disk is not the one that was loaded any more.

/// How a change of a disk ended.
enum class DiskChange {
    kMade,
    kNotMade,
    kOtherDrive, ///< the disk was not the record's any more, or did not answer: diskpart was not run
    kDriveLost,  ///< that was so when diskpart had ended: what it has changed is not known
};

/// For a box that says that the drive has changed: what was done to it, without a full stop. Null for the other ends.
[[nodiscard]] const char* changedDriveConsequence(DiskChange end);

inline constexpr const char* kDriveHasChanged = "***** DRIVE HAS CHANGED *****";

/// `role` is what the drive was to the job: "DESTINATION", "SOURCE". `untouched` says what was not done to it, a whole
/// sentence without its full stop.
[[nodiscard]] std::string changedDriveText(std::string_view role, std::string_view untouched = "Nothing was written");

} // namespace torvane
