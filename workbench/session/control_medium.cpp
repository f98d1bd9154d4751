#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/devices/drive_layout.h"
#include "workbench/session/control_parts.h"

#include <array>

namespace torvane::bench {
namespace {

// What lies on the drive is read past its faults: Windows tells the table from its memory.
ContentReader readerOf(const BenchDrive& drive) {
    return [&drive](std::uint64_t offset, std::size_t length) {
        std::vector<std::uint8_t> bytes(length);
        const UniqueHandle handle = drive.content().open(GENERIC_READ, nullptr);
        if (!handle || drive.content().read(handle.get(), offset, bytes) != 0) {
            bytes.assign(length, 0);
        }
        return bytes;
    };
}

std::vector<VolumeExtent> mountedExtents(BenchSession& session, std::uint32_t disk) {
    const BenchState state = session.folder().state();
    std::vector<VolumeExtent> extents;
    for (const VolumeDescription& volume : session.description().volumes) {
        for (const VolumeExtent& extent : volume.extents) {
            if (extent.disk == disk && state.isMounted(volume)) {
                extents.push_back(extent);
            }
        }
    }
    return extents;
}

} // namespace

ControlResult partitionLayout(BenchSession& session, BenchDrive& drive, const ControlRequest& request) {
    const DriveDescription& description = drive.description();
    return giveWhole(request, driveLayout(description, readerOf(drive), mountedExtents(session, description.number)));
}

ControlResult mediaChanges(BenchSession& session, BenchDrive& drive, const ControlRequest& request) {
    if (request.out.empty()) {
        return {0, 0};
    }
    const DriveDescription& description = drive.description();
    std::array<std::uint8_t, 4> count{};
    // A device that went away took its driver's count with it.
    storeLe<std::uint32_t>(count, 0,
                           description.swap.keepsHandles ? session.folder().state().swapsOf(description.number) : 0);
    return giveWhole(request, count);
}

} // namespace torvane::bench
