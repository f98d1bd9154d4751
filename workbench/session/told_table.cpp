#include "workbench/session/told_table.h"

#include "base/bytes.h"
#include "workbench/devices/drive_layout.h"
#include "workbench/session/drive_content.h"

#include <algorithm>
#include <optional>
#include <set>

namespace torvane::bench {
namespace {

// DRIVE_LAYOUT_INFORMATION_EX: the style, the count of entries, and from 48 on the entries of 144 bytes, each with
// start and length at 8 and 16.
constexpr std::size_t kHeader = 48;
constexpr std::size_t kEntry = 144;
constexpr std::uint32_t kRaw = 2;

// What lies on the drive is read past its faults.
ContentReader readerOf(const DriveContent& content) {
    return [&content](std::uint64_t offset, std::size_t length) {
        std::vector<std::uint8_t> bytes(length);
        const UniqueHandle handle = content.open(GENERIC_READ, nullptr);
        if (!handle || content.read(handle.get(), offset, bytes) != 0) {
            bytes.assign(length, 0);
        }
        return bytes;
    };
}

std::vector<VolumeExtent> mountedExtents(const BenchState& state, const BenchDescription& bench, std::uint32_t disk) {
    std::vector<VolumeExtent> extents;
    for (const VolumeDescription& volume : bench.volumes) {
        for (const VolumeExtent& extent : volume.extents) {
            if (extent.disk == disk && state.isMounted(volume)) {
                extents.push_back(extent);
            }
        }
    }
    return extents;
}

/// Where the partitions of the table on the medium begin; none where no table lies there.
std::optional<std::set<std::uint64_t>> startsOnMedium(BenchFolder& folder, const DriveDescription& drive) {
    const DriveContent content(folder.path(), drive);
    const std::vector<std::uint8_t> layout = driveLayout(drive, readerOf(content), {});
    if (loadLe32(layout, 0) == kRaw) {
        return std::nullopt;
    }
    std::set<std::uint64_t> starts;
    for (std::size_t at = kHeader; at + kEntry <= layout.size(); at += kEntry) {
        if (loadLe64(layout, at + 16) != 0) {
            starts.insert(loadLe64(layout, at + 8));
        }
    }
    return starts;
}

} // namespace

std::vector<std::uint8_t> toldTable(BenchFolder& folder, const BenchDescription& bench, const DriveDescription& drive) {
    const BenchState state = folder.state();
    if (const auto kept = state.toldTables.find(drive.number); kept != state.toldTables.end()) {
        return kept->second;
    }
    const DriveContent content(folder.path(), drive);
    return driveLayout(drive, readerOf(content), mountedExtents(state, bench, drive.number));
}

void keepToldTable(BenchFolder& folder, const BenchDescription& bench, const DriveDescription& drive,
                   std::uint64_t offset, std::uint64_t length) {
    // An MBR is the first sector; a GPT's header follows it, and then, in general, its 16 KiB of entries.
    constexpr std::uint64_t kEntriesBytes = 16384;
    if (length == 0 || offset >= 2 * std::uint64_t{drive.sectorSize} + kEntriesBytes ||
        folder.state().toldTables.contains(drive.number)) {
        return;
    }
    const std::vector<std::uint8_t> told = toldTable(folder, bench, drive);
    folder.changeState([&](BenchState& state) { state.toldTables.try_emplace(drive.number, told); });
}

void readTableAnew(BenchFolder& folder, const BenchDescription& bench, const DriveDescription& drive) {
    const std::optional<std::set<std::uint64_t>> starts = startsOnMedium(folder, drive);
    folder.changeState([&](BenchState& state) { readTable(state, bench, drive.number, starts); });
}

} // namespace torvane::bench
