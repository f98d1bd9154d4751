#include "records/drive_texts.h"

#include "base/ascii.h"
#include "base/format.h"
#include "records/drive_record.h"
#include "records/serial_number.h"

#include <array>
#include <cinttypes>
#include <functional>

namespace torvane {

namespace {

// Indexed by bus code - 2000.
constexpr std::array<std::string_view, 4> kInterfaceNames{"USB", "SATA", "FILE", "NVME"};

} // namespace

std::string sizeSectorsText(const DriveRecord& record) {
    if (record.bytesPerSector <= 0) {
        return std::string(kNotAvailable);
    }
    return formatText("%" PRId64, record.sizeBytes / record.bytesPerSector);
}

std::string sizeGigabytesText(const DriveRecord& record) {
    return formatText("%.02f", record.sizeGigabytes);
}

std::string interfaceText(DriveRecord& record) {
    const bool standard = record.smartType == kSmartTypeStandard;
    if (record.busCode == kBusCodeOwnText) {
        if (standard) {
            record.busText.assign("SATA USB");
        }
        return std::string(record.busText.view());
    }
    if (record.busCode < kBusCodeUsb || record.busCode > kBusCodeNvme) {
        return {};
    }
    if (standard) {
        return record.busCode == kBusCodeUsb ? "SATA USB" : "SATA";
    }
    return std::string(kInterfaceNames[static_cast<std::size_t>(record.busCode - kBusCodeUsb)]);
}

std::string printedIdentityText(const DriveRecord& record) {
    std::string text;
    const auto addIfOther = [&text](const char* what, std::string_view told, std::string_view shown, auto isSame) {
        const std::string_view printed = withoutBlanksAround(told);
        if (!printed.empty() && isPrintableAscii(printed) && !isSame(printed, withoutBlanksAround(shown))) {
            text.append(text.empty() ? "" : ", ").append(what).append(" ").append(printed);
        }
    };
    addIfOther("serial number", record.printed.serialNumber, record.serialNumber.view(), isSameSerialNumber);
    addIfOther("model", record.printed.model, record.model.view(), std::equal_to<>());
    if (!text.empty()) {
        addIfOther("firmware", record.printed.firmware, record.firmware.view(), std::equal_to<>());
    }
    return text;
}

std::string jobDriveText(const DriveRecord& record) {
    const std::string printed = printedIdentityText(record);
    return formatText("disk %03d - %s %s, %" PRId64 " bytes", record.driveNumber, record.model.c_str(),
                      record.serialNumber.c_str(), record.sizeBytes)
        .append(printed.empty() ? "" : ", printed: ")
        .append(printed);
}

std::string driveProgressText(std::string_view activity, std::int32_t percent) {
    return std::string(activity).append(formatText(" %d%%", percent));
}

} // namespace torvane
