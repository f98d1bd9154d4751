#pragma once

#include "workbench/description/drive_description.h"

#include <array>
#include <cstdint>
#include <span>

namespace torvane::bench {

inline constexpr std::size_t kAtaBlock = 512;
using AtaBlock = std::array<std::uint8_t, kAtaBlock>;

/// The 512 bytes of IDENTIFY DEVICE, with integrity word.
[[nodiscard]] AtaBlock identifyBlock(const DriveDescription& drive, bool smartEnabled);

/// Sets the last byte so that all bytes sum to zero modulo 256, as SMART data and logs and the identify block have it.
void sealBlock(std::span<std::uint8_t, kAtaBlock> block);

} // namespace torvane::bench
