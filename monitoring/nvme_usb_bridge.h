#pragma once

#include "base/bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace torvane {

// NVMe commands through a USB bridge that takes them as vendor commands, wrapped in SCSI: one pass-through request
// sends the command in a data block, a second one receives the command's data.

inline constexpr std::uint32_t kIoctlScsiPassThrough = 0x0004D004;
inline constexpr std::size_t kBridgeBlockSize = 512;
using BridgeBlock = std::array<std::uint8_t, kBridgeBlockSize>;

/// The width of the data offset in SCSI_PASS_THROUGH (Win32, ntddscsi.h), and with it the structure's length, is that
/// of the caller's pointers.
enum class PassThroughLayout {
    kShort, ///< 44 bytes: what a 32-bit program sends
    kLong,  ///< 56 bytes: what the system wants from a 64-bit program
};

/// The data blocks that carry Identify Controller and Get Log Page (health log).
[[nodiscard]] BridgeBlock bridgeIdentifyBlock();
[[nodiscard]] BridgeBlock bridgeHealthBlock();

/// SCSI_PASS_THROUGH, sense data and data block in one buffer, which is request and reply.
[[nodiscard]] std::vector<std::uint8_t> bridgeSendRequest(PassThroughLayout layout, const BridgeBlock& block);
[[nodiscard]] std::vector<std::uint8_t> bridgeReceiveRequest(PassThroughLayout layout, std::size_t length);

/// True when the device carried out the SCSI command (status GOOD).
[[nodiscard]] bool bridgeReplyIsGood(ByteView reply);

/// The `length` data bytes of a reply; nothing when it is shorter or the device refused the command.
[[nodiscard]] std::optional<ByteView> bridgeData(PassThroughLayout layout, ByteView reply, std::size_t length);

/// A bridge that knows no such command may answer with zeros, or with the very block that it was sent. Both are told by
/// the sum of the first 512 bytes.
[[nodiscard]] bool isBridgeIdentifyData(ByteView data);
[[nodiscard]] bool isBridgeHealthData(ByteView data);

} // namespace torvane
