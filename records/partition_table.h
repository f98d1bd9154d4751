#pragma once

#include <array>
#include <cstdint>

namespace torvane {

/// PARTITION_STYLE (Win32, winioctl.h).
enum class PartitionStyle : std::uint32_t { kMbr = 0, kGpt = 1, kRaw = 2 };

/// How a disk's partition table names the disk, and how much it holds.
struct PartitionTable {
    PartitionStyle style = PartitionStyle::kRaw;
    std::uint32_t mbrSignature = 0;           ///< of kMbr, else 0
    std::array<std::uint8_t, 16> gptDiskId{}; ///< of kGpt as it lies on the disk, else zero
    std::int32_t partitions = 0;              ///< entries in use

    bool operator==(const PartitionTable&) const = default;
};

/// True when both are the table of one disk: what names the disk is compared, not what the table holds.
[[nodiscard]] constexpr bool nameSameDisk(const PartitionTable& one, const PartitionTable& other) {
    return one.style == other.style && one.mbrSignature == other.mbrSignature && one.gptDiskId == other.gptDiskId;
}

} // namespace torvane
