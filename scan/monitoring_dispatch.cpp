#include "scan/monitoring_dispatch.h"

#include "monitoring/nvme_health.h"
#include "monitoring/smart_report.h"
#include "records/drive_record.h"
#include "records/smart_type.h"

#include <array>

namespace torvane {

int dispatchMonitoring(DriveRecord& record) {
    if (const int result = ReadNvmeHealth(record); result != 0) {
        return result;
    }
    // The type's text is formatted before and after the pass on purpose, though nobody reads it: the last formatting's
    // result is the dispatch's.
    std::array<char, 1024> smartTypeName{};
    SmartTypeText(record, smartTypeName);
    SmartParseSsdCounters(record);
    return SmartTypeText(record, smartTypeName);
}

} // namespace torvane
