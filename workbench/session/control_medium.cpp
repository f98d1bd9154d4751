#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/session/control_parts.h"
#include "workbench/session/told_table.h"

#include <array>

namespace torvane::bench {

ControlResult partitionLayout(BenchSession& session, BenchDrive& drive, const ControlRequest& request) {
    return giveWhole(request, toldTable(session.folder(), session.description(), drive.description()));
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
