#pragma once

#include <vector>

namespace torvane {

struct AppState;
struct DriveRecord;

// What the user chooses before a copy job can start. They run on the window's thread. Each that answers "no" has shown
// its box, unless it is said that it is silent.

/// The drives of the last scan that may be overwritten, in scan order: all but the one that holds C:, and but `source`.
[[nodiscard]] std::vector<DriveRecord*> destinationCandidates(const AppState& state, const DriveRecord* source);

/// The one ticked drive of a list of destinations; null when none or several are ticked.
[[nodiscard]] DriveRecord* requireDestination(const std::vector<DriveRecord*>& ticked);

/// Chooses where the image of `drive` goes: asks for a folder, and looks whether its volume has room for the image.
/// When both are well, folder and image source are set.
[[nodiscard]] bool chooseImageDestination(AppState& state, DriveRecord& drive);

/// Asks for an image file, whose path then stands in `destinationFolder`. False, silently, when the user cancels.
[[nodiscard]] bool chooseSourceImage(AppState& state);

} // namespace torvane
