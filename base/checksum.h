#pragma once

#include "base/bytes.h"

#include <cstdint>

namespace torvane {

/// CRC-32 of ISO 3309, as PNG and gzip have it.
[[nodiscard]] std::uint32_t crc32(ByteView bytes);

} // namespace torvane
