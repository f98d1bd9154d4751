#include "details/identity_page.h"

#include "base/ascii.h"
#include "base/bytes.h"
#include "base/format.h"
#include "details/page_rows.h"
#include "details/report_lines.h"
#include "discovery/bus_type.h"
#include "health/grading.h"
#include "records/drive_record.h"
#include "records/serial_number.h"

#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace torvane {

namespace {

/// What a device told and did not mean: blanks, or the probe's word for nothing.
std::string_view told(std::string_view text) {
    const std::string_view bare = withoutBlanksAround(text);
    return bare == kNotAvailable ? std::string_view() : bare;
}

/// The value where it tells something else than what stands there already.
std::string_view ifOther(std::string_view value, std::string_view shown) {
    return withSingleBlanks(value) == withSingleBlanks(shown) ? std::string_view() : value;
}

std::string gigabytesText(std::uint64_t bytes) {
    return formatText("%.2f GB", static_cast<double>(bytes) / (1024.0 * 1024.0 * 1024.0));
}

/// The number at the text's beginning, its digits in groups.
std::uint64_t groupedNumber(std::string_view text) {
    std::uint64_t number = 0;
    for (const char character : text) {
        if (character >= '0' && character <= '9') {
            number = number * 10 + static_cast<std::uint64_t>(character - '0');
        } else if (character != ',') {
            break;
        }
    }
    return number;
}

// --- Who it is

void addSerialNumbers(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    const std::string_view shown = told(drive.serialNumber.view());
    rows.add("Serial number", shown.empty() ? kNotAvailable : shown, "as lists, reports and file names have it");
    const std::string device = deviceSerialNumber(drive.device);
    const bool same = isSameSerialNumber(device, shown);
    rows.addIfTold("Serial number, told by the device", device, same ? "the same" : "another one than the list shows");
    rows.addIfTold("Serial number, printed", told(drive.printed.serialNumber),
                   "as the controller tells it: the label's");
    const std::string_view reported = fieldOf(report.identity, "Serial Number");
    if (!isSameSerialNumber(reported, shown)) {
        rows.addIfTold("Serial number in the report", told(reported));
    }
}

void addModel(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    const std::string_view model = told(drive.model.view());
    rows.add("Model", model.empty() ? kNotAvailable : model);
    rows.addIfTold("Model, told by its controller", ifOther(told(drive.printed.model), model));
    rows.addIfTold("Model in the report", ifOther(fieldOf(report.identity, "Device Model"), model));
    rows.addIfTold("Model in the report", ifOther(fieldOf(report.identity, "Model Number"), model));
    rows.addIfTold("Model family", fieldOf(report.identity, "Model Family"));
    rows.addIfTold("Vendor", told(drive.vendor.view()));
    rows.addIfTold("Vendor", ifOther(fieldOf(report.identity, "Vendor"), told(drive.vendor.view())));
    rows.addIfTold("Product", ifOther(told(drive.product.view()), model));
}

void addFirmware(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    const std::string_view firmware = told(drive.firmware.view());
    rows.addIfTold("Firmware", firmware);
    rows.addIfTold("Firmware, told by its controller", ifOther(told(drive.printed.firmware), firmware));
    rows.addIfTold("Firmware in the report", ifOther(fieldOf(report.identity, "Firmware Version"), firmware));
    rows.addIfTold("Revision", fieldOf(report.identity, "Revision"));
}

struct TakenField {
    std::string_view name; ///< in the report
    std::string_view shown;
};

void addFields(const ToolReport& report, std::span<const TakenField> fields, PageRows& rows) {
    for (const TakenField& field : fields) {
        rows.addIfTold(field.shown, fieldOf(report.identity, field.name));
    }
}

constexpr TakenField kIdentityFields[] = {
    {"LU WWN Device Id", "World wide name"}, {"Logical Unit id", "World wide name"},
    {"Namespace 1 IEEE EUI-64", "EUI-64"},   {"Form Factor", "Form factor"},
    {"Rotation Rate", "Rotation rate"},
};

constexpr TakenField kTransportFields[] = {
    {"Transport protocol", "Transport protocol"},
    {"SATA Version is", "SATA version, and speed now"},
    {"ATA Version is", "ATA version"},
    {"NVMe Version", "NVMe version"},
    {"PCI Vendor/Subsystem ID", "PCI vendor"},
    {"Device type", "Device type"},
};

constexpr TakenField kSettingFields[] = {
    {"Write cache is", "Write cache"},
    {"Writeback Cache is", "Write cache"},
    {"Rd look-ahead is", "Read look-ahead"},
    {"APM level is", "Power management"},
    {"APM feature is", "Power management"},
    {"AAM level is", "Acoustic management"},
    {"TRIM Command", "TRIM"},
    {"Number of Namespaces", "Namespaces"},
    {"SMART support is", "SMART support"},
};

std::string placeText(const DriveRecord& drive) {
    return drive.recordKind == kRecordKindImageFile
               ? std::string(drive.imageFilePath.view())
               : formatText("drive %d, %s", drive.driveNumber, drive.devicePath.c_str());
}

void addIdentity(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    rows.heading("Identity");
    rows.add("Place", placeText(drive), drive.systemDrive == 1 ? "Windows runs from this drive" : "");
    addModel(drive, report, rows);
    addSerialNumbers(drive, report, rows);
    addFirmware(drive, report, rows);
    addFields(report, kIdentityFields, rows);
}

void addTransport(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    rows.heading("Transport");
    const std::string_view bus = busTypeText(drive.busType);
    rows.add("Bus", bus);
    rows.addIfTold("Shown as", ifOther(told(drive.busText.view()), bus));
    addFields(report, kTransportFields, rows);
    addFields(report, kSettingFields, rows);
}

// --- What it holds

/// "" unless the report tells of another size than the system.
std::string otherCapacity(const DriveRecord& drive, const ToolReport& report) {
    const std::string_view user = fieldOf(report.identity, "User Capacity");
    const std::string_view text = user.empty() ? fieldOf(report.identity, "Namespace 1 Size/Capacity") : user;
    const std::uint64_t bytes = groupedNumber(text);
    return bytes == 0 || bytes == static_cast<std::uint64_t>(drive.sizeBytes) ? std::string() : std::string(text);
}

void addCapacity(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    rows.heading("Size");
    const auto bytes = static_cast<std::uint64_t>(drive.sizeBytes);
    rows.add("Capacity", thousandsText(bytes) + " bytes",
             formatText("%.2f GB as makers count, ", static_cast<double>(bytes) / 1e9) + gigabytesText(bytes) +
                 " as the list counts");
    rows.addIfTold("Capacity in the report", otherCapacity(drive, report),
                   "not what the system reaches: a bridge, or a part that is hidden");
    const bool known = drive.bytesPerSector > 0;
    rows.add("Sectors", known ? thousandsText(bytes / static_cast<std::uint64_t>(drive.bytesPerSector)) : "not told");
    rows.add("Sector size", known ? formatText("%d bytes", drive.bytesPerSector) : "not told",
             "as the system reads it");
    constexpr TakenField kSizes[] = {{"Sector Sizes", "Sector sizes in the report"},
                                     {"Sector Size", "Sector size in the report"},
                                     {"Logical block size", "Logical block size"},
                                     {"Physical block size", "Physical block size"},
                                     {"Namespace 1 Formatted LBA Size", "Formatted sector size"},
                                     {"Total NVM Capacity", "All flash"},
                                     {"Unallocated NVM Capacity", "Flash without a namespace"},
                                     {"Namespace 1 Utilization", "In use, as the drive counts"}};
    addFields(report, kSizes, rows);
}

// --- What keeps it from being read or written

bool isAtaReport(const ToolReport& report) {
    return !fieldOf(report.identity, "ATA Version is").empty();
}

void addAccess(const DetailSubject& subject, const ToolReport& report, PageRows& rows) {
    rows.heading("Access");
    if (subject.readOnly) {
        rows.add("Read-only attribute", *subject.readOnly ? "set" : "not set",
                 *subject.readOnly ? "Windows refuses every write to this drive" : "Windows lets programs write to it");
    } else {
        rows.add("Read-only attribute", "not told");
    }
    const std::string_view told = fieldOf(report.identity, "ATA Security is");
    const std::string_view state = withoutBlanksAround(told.substr(0, told.find('[')));
    if (!state.empty()) {
        rows.add("ATA security", state, securityMeaning(state));
    } else if (isAtaReport(report)) {
        rows.add("ATA security", "not reported");
    }
}

std::string guidText(const std::array<std::uint8_t, 16>& bytes) {
    const ByteView view(bytes);
    return formatText("{%08" PRIX32 "-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", loadLe32(view, 0),
                      unsigned{loadLe16(view, 4)}, unsigned{loadLe16(view, 6)}, unsigned{bytes[8]}, unsigned{bytes[9]},
                      unsigned{bytes[10]}, unsigned{bytes[11]}, unsigned{bytes[12]}, unsigned{bytes[13]},
                      unsigned{bytes[14]}, unsigned{bytes[15]});
}

void addPartitionTable(const DriveRecord& drive, PageRows& rows) {
    rows.heading("Partitions and volumes");
    const std::optional<PartitionTable> table = drive.partitionTable.get();
    if (!table) {
        rows.add("Partition style", "not told");
        return;
    }
    switch (table->style) {
    case PartitionStyle::kMbr:
        rows.add("Partition style", "MBR", formatText("disk signature %08" PRIX32, table->mbrSignature));
        break;
    case PartitionStyle::kGpt:
        rows.add("Partition style", "GPT", "disk " + guidText(table->gptDiskId));
        break;
    case PartitionStyle::kRaw:
        rows.add("Partition style", "none", "the drive has no partition table");
        return;
    }
    rows.add("Partitions", std::to_string(table->partitions));
}

std::string volumeText(const DriveVolume& volume) {
    if (volume.fileSystem.empty()) {
        return "tells no file system";
    }
    std::string text = volume.label.empty() ? volume.fileSystem : volume.label + ", " + volume.fileSystem;
    if (volume.bytes) {
        text += ", " + gigabytesText(*volume.bytes);
    }
    if (volume.freeBytes) {
        text += ", " + gigabytesText(*volume.freeBytes) + " free";
    }
    return text;
}

void addVolumes(const DetailSubject& subject, PageRows& rows) {
    for (const DriveVolume& volume : subject.volumes) {
        rows.add(std::string("Volume ") + volume.letter + ":", volumeText(volume),
                 bitLockerText(subject.drive, volume.letter));
    }
    if (subject.volumes.empty()) {
        rows.add("Volumes", "none with a drive letter");
    }
}

} // namespace

std::string_view securityMeaning(std::string_view state) {
    const std::string lower = lowerAsciiText(state);
    if (lower.find("**locked**") != std::string::npos) {
        return "LOCKED: the drive gives no data until its password is entered; every copy from it or onto it fails";
    }
    if (lower.starts_with("enabled")) {
        return "a password is set: readable now, but locked when power was off; a copy fails then";
    }
    if (lower.starts_with("disabled")) {
        return lower.find("not frozen") != std::string::npos
                   ? "no password is set: nothing keeps a copy from reading it"
                   : "no password is set, and none can be until power was off";
    }
    return lower.starts_with("unavailable") ? std::string_view("the drive knows no password") : std::string_view();
}

DetailPage identityPage(const DetailSubject& subject, const ToolReport& report) {
    DetailPage page;
    PageRows rows(page, "Drive");
    addIdentity(subject.drive, report, rows);
    addTransport(subject.drive, report, rows);
    addCapacity(subject.drive, report, rows);
    addAccess(subject, report, rows);
    addPartitionTable(subject.drive, rows);
    addVolumes(subject, rows);
    return page;
}

} // namespace torvane
