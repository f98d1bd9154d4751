#include "discovery/partition_table.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

namespace {

// DRIVE_LAYOUT_INFORMATION_EX: 32-bit style and count, a union of 40 bytes (MBR: 32-bit signature; GPT: the disk's
// GUID), then PARTITION_INFORMATION_EX of 144 bytes each, with a union at 32 (MBR: 8-bit type; GPT: the type's GUID).
constexpr std::size_t kCountOffset = 4;
constexpr std::size_t kNameOffset = 8;
constexpr std::size_t kEntriesOffset = 48;
constexpr std::size_t kEntryBytes = 144;
constexpr std::size_t kTypeOffset = 32;
constexpr std::size_t kGuidBytes = 16;

// Tables tell their unused entries, too: those have type 0.
bool isUsed(PartitionStyle style, ByteView entry) {
    const ByteView type = entry.subspan(kTypeOffset, style == PartitionStyle::kMbr ? 1 : kGuidBytes);
    return std::ranges::any_of(type, [](std::uint8_t byte) { return byte != 0; });
}

std::int32_t countUsed(PartitionStyle style, ByteView answer) {
    const std::size_t present = (answer.size() - kEntriesOffset) / kEntryBytes;
    const std::size_t count = std::min<std::size_t>(loadLe32(answer, kCountOffset), present);
    std::int32_t used = 0;
    for (std::size_t i = 0; i < count; ++i) {
        used += isUsed(style, answer.subspan(kEntriesOffset + i * kEntryBytes, kEntryBytes)) ? 1 : 0;
    }
    return used;
}

} // namespace

std::optional<PartitionTable> parseDriveLayout(ByteView answer) {
    if (answer.size() < kEntriesOffset) {
        return std::nullopt;
    }
    PartitionTable table{.style = static_cast<PartitionStyle>(loadLe32(answer, 0))};
    if (table.style == PartitionStyle::kMbr) {
        table.mbrSignature = loadLe32(answer, kNameOffset);
    } else if (table.style == PartitionStyle::kGpt) {
        std::ranges::copy(answer.subspan(kNameOffset, kGuidBytes), table.gptDiskId.begin());
    } else {
        return PartitionTable{};
    }
    table.partitions = countUsed(table.style, answer);
    return table;
}

} // namespace torvane
