#pragma once

#include "copy/dialogs/destination_volume.h"

#include <optional>
#include <string_view>

namespace torvane {

/// What the system tells of the volume that holds `folder`. The room of a folder with a letter is its letter's; of any
/// other, such as one on a share, the folder's own.
[[nodiscard]] DestinationVolume volumeOfFolder(std::string_view folder);

/// The same for the window's thread, which goes on answering: a computer that does not answer is waited for for half a
/// minute. None when the user has left meanwhile.
[[nodiscard]] std::optional<DestinationVolume> awaitVolumeOfFolder(std::string_view folder);

} // namespace torvane
