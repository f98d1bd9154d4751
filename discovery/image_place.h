#pragma once

#include "records/volume_record.h"

#include <cstdint>
#include <string>

namespace torvane {

struct DriveRecord;
class VolumeSystem;

enum class ImagePlace : std::uint8_t {
    kElsewhere,
    kOnTheDrive,
    kNotTold, ///< the system does not tell on which drive it lies
};

/// Whether an image file lies on the drive, by whatever road it is reached. `volumes` tells of letters that do not tell
/// their place now.
[[nodiscard]] ImagePlace placeOfImage(const std::wstring& image, const DriveRecord& drive, const VolumeTable& volumes,
                                      VolumeSystem& system);

} // namespace torvane
