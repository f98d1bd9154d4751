#pragma once

#include "copy/dialogs/destination_volume.h"

#include <string_view>

namespace torvane {

/// What the system tells of the volume that holds `folder`. The room of a folder with a letter is its letter's; of any
/// other, such as one on a share, the folder's own.
[[nodiscard]] DestinationVolume volumeOfFolder(std::string_view folder);

} // namespace torvane
