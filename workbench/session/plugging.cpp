#include "workbench/session/plugging.h"

#include "workbench/session/volatile_cache.h"

namespace torvane::bench {

void setUnplugged(BenchFolder& folder, const DriveDescription& drive, bool unplugged) {
    folder.changeState([&](BenchState& state) {
        if (unplugged) {
            state.unplugged.insert(drive.number);
        } else {
            state.unplugged.erase(drive.number);
        }
    });
    if (unplugged && drive.faults.volatileCache) {
        VolatileCache(folder.path(), drive).lose(DriveContent(folder.path(), drive));
    }
}

} // namespace torvane::bench
