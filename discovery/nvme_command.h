#pragma once

#include <cstddef>
#include <cstdint>

namespace torvane {

/// NVMe Base Specification: SMART / Health Information log page (02h) and Identify data structures. Bytes.
inline constexpr std::size_t kNvmeHealthLogSize = 512;
inline constexpr std::size_t kNvmeIdentifySize = 4096;

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
