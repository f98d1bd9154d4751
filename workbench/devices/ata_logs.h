#pragma once

#include "workbench/devices/ata_identify.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace torvane::bench {

/// The whole of one log, in 512-byte blocks, as SMART READ LOG gives it; nothing for an address without a log.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> smartLogPages(const SmartDescription& smart,
                                                                     std::uint8_t address);

/// The same for READ LOG EXT.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> generalLogPages(const SmartDescription& smart,
                                                                       std::uint8_t address);

} // namespace torvane::bench
