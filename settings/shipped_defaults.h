#pragma once

#include <array>
#include <string>

namespace torvane {

/// The folder, beside the program, with the files as they ship that become the user's own.
inline constexpr const char* kDefaultsFolder = "defaults";

/// What lies there.
inline constexpr std::array<const char*, 3> kShippedDefaults = {"Message.db", "Config.db", "BITLOCKER.db"};

/// Copies into `programFolder` each of these files that is missing there, out of its folder of defaults; so a newer
/// package can be unpacked over an older one, and what the user has made of his files stays. A default that is not
/// there is none: a technician's portable drive carries the files themselves. What cannot be copied has its row in the
/// log ("ERROR").
void provideMissingFiles(const std::string& programFolder);

} // namespace torvane
