#include "discovery/table_reading.h"

#include "base/system_error.h"
#include "discovery/device_request.h"

#include <windows.h>

#include <winioctl.h>

namespace torvane {

std::optional<std::string> makeSystemReadTable(const DriveRecord& drive) {
    if (drive.recordKind == kRecordKindImageFile ||
        requestFromDevice(drive.handle, IOCTL_DISK_UPDATE_PROPERTIES, {}, {}) || isUnknownRequest(GetLastError())) {
        return std::nullopt;
    }
    return systemErrorText(GetLastError());
}

} // namespace torvane
