#include "discovery/volume_table.h"

#include <cstddef>

namespace torvane {

void resetVolumeTable(VolumeTable& table) {
    table.count = 0;
    for (VolumeRecord& record : table.records) {
        record.driveLetter = -1;
        record.diskNumber = -1;
    }
}

void appendVolume(VolumeTable& table, char letter, std::span<const VolumeExtent> extents) {
    for (const VolumeExtent& extent : extents) {
        const auto position = static_cast<std::size_t>(table.count);
        if (position >= table.records.size()) {
            return;
        }
        table.records[position] = {.startingOffset = extent.startingOffset,
                                   .extentLength = extent.length,
                                   .driveLetter = letter,
                                   .diskNumber = static_cast<std::int32_t>(extent.diskNumber)};
        ++table.count;
    }
}

void keepVolume(VolumeTable& table, const VolumeTable& before, char letter) {
    for (int i = 0; i < before.count; ++i) {
        const VolumeRecord& record = before.records[static_cast<std::size_t>(i)];
        if (record.driveLetter == letter && static_cast<std::size_t>(table.count) < table.records.size()) {
            table.records[static_cast<std::size_t>(table.count++)] = record;
        }
    }
}

} // namespace torvane
