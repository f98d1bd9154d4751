#include "health/tool_missing.h"

#include "records/drive_record.h"

#include <windows.h>

namespace torvane {

bool isToolMissed(const DriveRecord& drive) {
    return drive.smartLoaded == 0 && SearchPathA(nullptr, "smartctl.exe", nullptr, 0, nullptr, nullptr) == 0;
}

} // namespace torvane
