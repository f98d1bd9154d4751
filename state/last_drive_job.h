#pragma once

namespace torvane {

/// What a command says that does not begin because a drive's last job was told to stop and has a read in flight.
inline constexpr const char* kLastDriveJobStillEnding = "The last job on a drive has not ended yet";

} // namespace torvane
