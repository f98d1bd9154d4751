#pragma once

#include "base/bytes.h"

namespace torvane {

/// True when the bytes are a PNG file from its signature to its end chunk, every chunk with its right checksum (W3C
/// Portable Network Graphics, clauses 5.2 and 5.3). The PDF library ends the program over a file that is not.
[[nodiscard]] bool isWholePng(ByteView file);

} // namespace torvane
