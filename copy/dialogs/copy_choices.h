#pragma once

#include "base/fixed_text.h"
#include "copy/dialogs/destination_volume.h"
#include "records/volume_record.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

// What the user chooses before a copy job can start. They run on the window's thread. Each that answers "no" has shown
// its box, unless it is said that it is silent.

/// The drives that may be overwritten, in their order: all but the one that holds C:, and but `source`.
[[nodiscard]] std::vector<DriveRecord*> destinationCandidates(const std::vector<DriveRecord*>& drives,
                                                              const VolumeTable& volumes, const DriveRecord* source);

/// The one ticked drive of a list of destinations; null when none or several are ticked.
[[nodiscard]] DriveRecord* requireDestination(const std::vector<DriveRecord*>& ticked);

/// Lets the user choose the folder that files go to. When the user cancels, `folder` stays as it was.
[[nodiscard]] bool chooseFolder(FixedText<1024>& folder);

/// Asks the system for the volume that holds a folder; none when the user has not waited for the answer.
using VolumeOfFolder = std::optional<DestinationVolume> (*)(std::string_view folder);

/// Chooses where the image of `drive` goes: asks for the folder, and looks whether its volume is there and has room for
/// the image, and for a file as large as that. What the system does not tell stands in nobody's way. Who does not wait
/// for its answer leaves silently.
[[nodiscard]] bool chooseImageDestination(FixedText<1024>& folder, const DriveRecord& drive, VolumeOfFolder volumeOf);

/// Asks for an image file. When the user cancels, silently, `image` is empty.
[[nodiscard]] bool chooseSourceImage(FixedText<1024>& image);

} // namespace torvane
