#include "discovery/owned_drive_record.h"

#include <windows.h>

namespace torvane {

DriveRecordPtr makeOwnedDriveRecord() {
    return {new DriveRecord, {.closeHandle = [](NativeHandle handle) { CloseHandle(handle); }}};
}

} // namespace torvane
