#pragma once

#include "ui/picture_choice.h"

#include <span>

namespace torvane {

/// The pictures that lie beside the program. The build writes the table from the files (tools/list-shipped-pictures).
[[nodiscard]] std::span<const ShippedPicture> shippedPictures();

} // namespace torvane
