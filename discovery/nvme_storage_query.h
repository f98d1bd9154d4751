#pragma once

#include "base/bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace torvane {

// The system's own transport to an NVMe controller: IOCTL_STORAGE_QUERY_PROPERTY with protocol-specific data (Win32,
// "Working with NVMe drives"). One buffer is request and reply.

inline constexpr std::uint32_t kIoctlStorageQueryProperty = 0x002D1400;
inline constexpr std::size_t kStorageQuerySize = 4144;
using StorageQueryBuffer = std::array<std::uint8_t, kStorageQuerySize>;

[[nodiscard]] StorageQueryBuffer storageQueryIdentifyRequest();

/// `namespaceId` 0 asks for the controller's log, 0xFFFFFFFF for that of all namespaces.
[[nodiscard]] StorageQueryBuffer storageQueryHealthRequest(std::uint32_t namespaceId);

/// The `length` data bytes of a reply; nothing when the reply is shorter.
[[nodiscard]] std::optional<ByteView> storageQueryData(ByteView reply, std::size_t length);

} // namespace torvane
