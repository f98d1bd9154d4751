#pragma once

#include "base/bytes.h"
#include "discovery/nvme_command.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace torvane {

// NVMe commands through a RAID driver that takes them as a private miniport request, IOCTL_SCSI_MINIPORT with the
// signature "IntelNvm". One buffer is request and reply.

inline constexpr std::uint32_t kIoctlScsiMiniport = 0x0004D008;
inline constexpr std::size_t kRaidRequestSize = 4260;
using RaidBuffer = std::array<std::uint8_t, kRaidRequestSize>;

inline constexpr NvmeCommand kRaidIdentifyNamespace{kNvmeOpcodeIdentify, 1, kNvmeCnsNamespace};
inline constexpr NvmeCommand kRaidIdentifyController{kNvmeOpcodeIdentify, 0, kNvmeCnsController};
/// 128 dwords of the log, told as the last one's number.
inline constexpr NvmeCommand kRaidGetHealthLog{kNvmeOpcodeGetLogPage, kNvmeAllNamespaces,
                                               (0x7FU << 16) | kNvmeHealthLogId};

/// The request that has the controller on `pathId` of the adapter carry out an admin command.
[[nodiscard]] RaidBuffer raidRequest(std::uint8_t pathId, const NvmeCommand& command);

/// The first `length` data bytes of a reply; nothing when the reply is shorter or tells of a failure.
[[nodiscard]] std::optional<ByteView> raidData(ByteView reply, std::size_t length);

/// Another adapter's driver may report success for a request that it does not know, and leave the buffer as it was: no
/// controller has no model, none has a health log without a temperature.
[[nodiscard]] bool isRaidIdentifyData(ByteView data);
[[nodiscard]] bool isRaidHealthData(ByteView data);

} // namespace torvane
