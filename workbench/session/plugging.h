#pragma once

#include "workbench/description/drive_description.h"
#include "workbench/session/bench_folder.h"

namespace torvane::bench {

/// Makes a drive vanish for every process on the bench, with what a volatile cache of it held, or brings it back.
void setUnplugged(BenchFolder& folder, const DriveDescription& drive, bool unplugged);

} // namespace torvane::bench
