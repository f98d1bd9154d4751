#pragma once

#include "copy/engine/image_file.h"

#include <memory>
#include <string>

namespace torvane {

/// An image file by Win32. Null when it cannot be opened.
[[nodiscard]] std::unique_ptr<ImageFile> openWindowsImage(const std::string& path, ImageUse use);

} // namespace torvane
