#include "admin/volume_refresh.h"

#include "discovery/volume_map.h"
#include "state/scan_tables.h"
#include "ui/waiting.h"

#include <memory>

namespace torvane {

bool bringVolumesUpToDate(ScanState& scan) {
    const auto volumes = std::make_shared<VolumeTable>(scan.volumes);
    if (!waiting::run("the volumes", [volumes] { *volumes = refreshedVolumes(*volumes); })) {
        return false;
    }
    scan.volumes = *volumes;
    return true;
}

} // namespace torvane
