#pragma once

namespace torvane {

class Jobs;
struct AppState;
struct DriveRecord;

// What must hold before a command starts. Each guard that refuses has shown its box; a refusal changes nothing. They
// run on the window's thread.

/// The one ticked drive to clone, to image, to image forensically or to rescue; null when none or several are ticked.
/// But for a clone also null, without a box, when a ticked drive's size is all ones.
[[nodiscard]] DriveRecord* requireDriveToClone(const AppState& state);
[[nodiscard]] DriveRecord* requireDriveToImage(const AppState& state);
[[nodiscard]] DriveRecord* requireDriveToImageForensically(const AppState& state);
[[nodiscard]] DriveRecord* requireDriveToRescue(const AppState& state);

/// True when the drive list has rows.
[[nodiscard]] bool requireListedDrives(const AppState& state);

/// True, with a box and a log row, while a copy or a change of a disk is still at work that was told to stop: its last
/// read may take long.
[[nodiscard]] bool lastDriveJobIsStillEnding(const Jobs& jobs);

} // namespace torvane
