#include "admin/protected_drives.h"

#include "records/drive_record.h"

namespace torvane {

bool mayBeChanged(const DriveRecord&) {
    return true;
}

} // namespace torvane
