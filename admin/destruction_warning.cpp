#include "admin/destruction_warning.h"

#include "base/format.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

/// The root with '?' for what is not ASCII: a folder's name, which the row only hints at.
std::string printable(const std::wstring& root) {
    std::string text(root.size(), '?');
    std::transform(root.begin(), root.end(), text.begin(),
                   [](wchar_t c) { return c < 0x80 ? static_cast<char>(c) : '?'; });
    return text;
}

WarningRow driveRow(const DriveRecord& drive) {
    return {"PHYSICAL", formatText("%03d - %s %s", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str()),
            "DESTINATION"};
}

WarningRow volumeRow(const std::wstring& root, const VolumeIdentityReader& identify) {
    // A volume that does not answer, such as one without a file system, is listed all the same.
    const VolumeIdentity identity = identify(root).value_or(VolumeIdentity{std::string(kNotAvailable), 0});
    return {"VOLUME",
            formatText("%s - %s - %04X-%04X", printable(root).c_str(), identity.label.c_str(),
                       identity.serialNumber >> 16, identity.serialNumber & 0xFFFF),
            "RELATED VOLUME"};
}

} // namespace

std::vector<WarningRow> warningRows(const DriveRecord& destination, const std::vector<std::wstring>& volumeRoots,
                                    const VolumeIdentityReader& identify) {
    std::vector<WarningRow> rows{driveRow(destination)};
    rows.reserve(volumeRoots.size() + 1);
    for (const std::wstring& root : volumeRoots) {
        rows.push_back(volumeRow(root, identify));
    }
    return rows;
}

std::string warningDetails(const DriveRecord& destination) {
    std::string details = formatText("Drive number %d, %s GB (%" PRId64 " bytes)", destination.driveNumber,
                                     sizeGigabytesText(destination).c_str(), destination.sizeBytes);
    const std::string own = deviceSerialNumber(destination.device);
    if (own.empty() || isSerialNumberOf(destination.device, destination.serialNumber.view())) {
        return details;
    }
    details += formatText("\nSerial number by its report: %s, by the drive itself: %s",
                          destination.serialNumber.c_str(), own.c_str());
    return details;
}

} // namespace torvane
