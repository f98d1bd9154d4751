#pragma once

#include "records/drive_record.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

struct ImageFileName {
    std::string path;
    std::int32_t number = 0; ///< never negative
};

/// The name of the next image of `source` in `folder`, numbered from "FileCounter.txt" in the current folder: one
/// signed 32-bit number in the machine's byte order. Every call moves the counter on, whether or not the image is then
/// made. Without a counter it starts at a random number, which the first image gets; a counter that cannot be read
/// whole gives a random number too, and stays as it is.
[[nodiscard]] ImageFileName MakeImageFileName(std::string_view folder, const DriveRecord& source);

} // namespace torvane
