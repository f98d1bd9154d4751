#include "discovery/monitoring_dispatch.h"

#include "discovery/drive_record.h"
#include "health/smart_type.h"
#include "monitoring/health_log.h"
#include "monitoring/nvme_health.h"
#include "monitoring/smart_report.h"

#include <array>

namespace torvane {

int dispatchMonitoring(DriveRecord& record) {
    markNvmeHealthUnread(record);
    if (const int result = ReadNvmeHealth(record); result != 0) {
        return result;
    }
    std::array<char, 1024> smartTypeName{};
    SmartTypeText(record, smartTypeName);
    SmartParseSsdCounters(record);
    return SmartTypeText(record, smartTypeName);
}

} // namespace torvane
