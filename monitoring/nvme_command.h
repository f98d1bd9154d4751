#pragma once

#include <cstdint>

namespace torvane {

/// The fields of an NVMe admin command that the health transports set (NVMe Base Specification, "Common Command
/// Format").
struct NvmeCommand {
    std::uint8_t opcode = 0;
    std::uint32_t namespaceId = 0;
    std::uint32_t dword10 = 0;
};

inline constexpr std::uint8_t kNvmeOpcodeGetLogPage = 0x02;
inline constexpr std::uint8_t kNvmeOpcodeIdentify = 0x06;
inline constexpr std::uint8_t kNvmeHealthLogId = 0x02;
inline constexpr std::uint8_t kNvmeCnsNamespace = 0;  ///< Identify: the namespace's data structure
inline constexpr std::uint8_t kNvmeCnsController = 1; ///< Identify: the controller's data structure
inline constexpr std::uint32_t kNvmeAllNamespaces = 0xFFFFFFFF;

} // namespace torvane
