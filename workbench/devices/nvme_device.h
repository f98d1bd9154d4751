#pragma once

#include "workbench/description/drive_description.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane::bench {

inline constexpr std::uint8_t kNvmeGetLogPage = 0x02;
inline constexpr std::uint8_t kNvmeIdentify = 0x06;
inline constexpr std::uint8_t kNvmeHealthLog = 0x02;
inline constexpr std::uint32_t kNvmeAllNamespaces = 0xFFFFFFFF;

/// What the device looks at of an admin command (NVMe Base Specification).
struct NvmeCommand {
    std::uint8_t opcode = 0;
    std::uint32_t namespaceId = 0;
    std::uint32_t dword10 = 0;
};

/// The data of an admin command, at most `length` bytes; nothing when the controller refuses it.
/// Knows Identify (namespace 1, controller) and the SMART / Health Information log.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> executeNvme(const DriveDescription& drive,
                                                                   const NvmeCommand& command, std::size_t length);

/// "NVME_IDENTIFY", "NVME_GET_LOG_PAGE" or "nvme:0x..".
[[nodiscard]] std::string nvmeCommandName(std::uint8_t opcode);

} // namespace torvane::bench
