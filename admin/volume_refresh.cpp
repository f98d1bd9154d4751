#include "admin/volume_refresh.h"

#include "discovery/volume_map.h"
#include "state/scan_tables.h"
#include "ui/waiting.h"

namespace torvane {

bool bringVolumesUpToDate(ScanState& scan) {
    const auto volumes = waiting::resultOf("the volumes", [known = scan.volumes] { return refreshedVolumes(known); });
    if (volumes) {
        scan.volumes = *volumes;
    }
    return volumes.has_value();
}

} // namespace torvane
