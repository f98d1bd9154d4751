#include "records/drive_texts.h"

#include "base/format.h"
#include "records/drive_record.h"

#include <cinttypes>

namespace torvane {

std::string sizeSectorsText(const DriveRecord& record) {
    if (record.bytesPerSector <= 0) {
        return std::string(kNotAvailable);
    }
    return formatText("%" PRId64, record.sizeBytes / record.bytesPerSector);
}

std::string sizeGigabytesText(const DriveRecord& record) {
    return formatText("%.02f", record.sizeGigabytes);
}

std::string jobDriveText(const DriveRecord& record) {
    return formatText("disk %03d - %s %s, %" PRId64 " bytes", record.driveNumber, record.model.c_str(),
                      record.serialNumber.c_str(), record.sizeBytes);
}

std::string driveProgressText(std::string_view activity, std::int32_t percent) {
    return std::string(activity).append(formatText(" %d%%", percent));
}

} // namespace torvane
