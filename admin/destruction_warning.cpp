#include "admin/destruction_warning.h"

#include "base/ascii.h"
#include "base/format.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"

#include <cinttypes>

namespace torvane {

namespace {

WarningRow driveRow(const DriveRecord& drive) {
    return {"PHYSICAL", formatText("%03d - %s %s", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str()),
            "DESTINATION"};
}

/// What the user knows the volume by. The name of one that no letter and no folder leads to says nothing to him.
std::string volumeInWords(const std::wstring& root, const VolumeLengthReader& lengthOf) {
    constexpr std::uint64_t kMegabyte = 1ULL << 20U;
    if (!root.starts_with(L"\\\\?\\")) {
        return asciiText(root);
    }
    const std::optional<std::uint64_t> length = lengthOf(root);
    const std::string nameless = "a volume without letter";
    return length ? nameless + formatText(", %" PRIu64 " MB", *length / kMegabyte) : nameless;
}

WarningRow volumeRow(const std::wstring& root, const VolumeIdentityReader& identify,
                     const VolumeLengthReader& lengthOf) {
    // A volume that does not answer, such as one without a file system, is listed all the same.
    const VolumeIdentity identity = identify(root).value_or(VolumeIdentity{std::string(kNotAvailable), 0});
    return {"VOLUME",
            formatText("%s - %s - %04X-%04X", volumeInWords(root, lengthOf).c_str(), identity.label.c_str(),
                       identity.serialNumber >> 16, identity.serialNumber & 0xFFFF),
            "RELATED VOLUME"};
}

} // namespace

std::vector<WarningRow> warningRows(const DriveRecord& destination, const std::vector<std::wstring>& volumeRoots,
                                    const VolumeIdentityReader& identify, const VolumeLengthReader& lengthOf) {
    std::vector<WarningRow> rows{driveRow(destination)};
    rows.reserve(volumeRoots.size() + 1);
    for (const std::wstring& root : volumeRoots) {
        rows.push_back(volumeRow(root, identify, lengthOf));
    }
    return rows;
}

std::string warningDetails(const DriveRecord& destination, std::string_view note) {
    std::string details = formatText("Drive number %d, %s GB (%" PRId64 " bytes)", destination.driveNumber,
                                     sizeGigabytesText(destination).c_str(), destination.sizeBytes);
    const auto addLine = [&](std::string_view line) { details.append(line.empty() ? "" : "\n").append(line); };
    // What may keep somebody from the wrong drive comes first: there is room for four lines.
    addLine(note);
    const std::string own = deviceSerialNumber(destination.device);
    if (!own.empty() && !isSerialNumberOf(destination.device, destination.serialNumber.view())) {
        addLine(formatText("Serial number by its report: %s, by the drive itself: %s", destination.serialNumber.c_str(),
                           own.c_str()));
    }
    if (const std::string printed = printedIdentityText(destination); !printed.empty()) {
        addLine("Printed on the drive: " + printed);
    }
    return details;
}

} // namespace torvane
