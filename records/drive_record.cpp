#include "records/drive_record.h"

#include <windows.h>

namespace torvane {

void DriveRecordDeleter::operator()(DriveRecord* record) const {
    if (record != nullptr && record->handle != nullptr) {
        CloseHandle(record->handle);
    }
    delete record;
}

} // namespace torvane
