#include "records/smart_type.h"

#include "records/drive_record.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

std::string_view smartTypeText(std::int32_t smartType) {
    switch (smartType) {
    case kSmartTypeStandard:
        return "STANDARD SMART TYPE";
    case kSmartTypeSsd:
        return "SSD SMART TYPE";
    case kSmartTypeNvme:
        return "NVME SMART TYPE";
    case kSmartTypeUnknown:
        return "UNKNOWN SMART TYPE";
    case kSmartTypeNone:
        return "SMART TYPE NONE";
    default:
        return "INVALID SMART TYPE";
    }
}

int SmartTypeText(const DriveRecord& record, std::span<char> out) {
    std::fill(out.begin(), out.end(), '\0');
    const std::string_view text = smartTypeText(record.smartType);
    if (!out.empty()) {
        std::copy_n(text.begin(), std::min(text.size(), out.size() - 1), out.begin());
    }
    return 1;
}

} // namespace torvane
