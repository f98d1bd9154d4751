#include "discovery/owned_drive_record.h"

#include "discovery/handle_lease.h"

#include <windows.h>

namespace torvane {

DriveRecordPtr makeOwnedDriveRecord() {
    const auto close = [](NativeHandle handle) { closeWhenFree(handle, [](NativeHandle free) { CloseHandle(free); }); };
    return {new DriveRecord, {.closeHandle = close}};
}

} // namespace torvane
