#include "copy/evidence/acquisition_record.h"

#include "base/ascii.h"
#include "base/format.h"
#include "base/one_line.h"
#include "copy/engine/digest_text.h"
#include "discovery/bus_type.h"
#include "records/drive_record.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

constexpr std::string_view kNotTold = "not told";

std::string number(std::uint64_t value) {
    return formatText("%" PRIu64, value);
}

std::string_view yesOrNo(const std::optional<bool>& told) {
    return !told ? kNotTold : *told ? "yes" : "no";
}

/// The lines in the making.
class Lines {
  public:
    void add(std::string_view key, std::string_view value) {
        text_.append(key).append(": ").append(oneLine(value)).append("\r\n");
    }
    /// `otherwise`: what stands there for an empty value.
    void add(std::string_view key, std::string_view value, std::string_view otherwise) {
        const std::string_view shown = withoutBlanksAround(value);
        add(key, shown.empty() ? otherwise : shown);
    }
    [[nodiscard]] std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

std::string_view transportOf(const DriveRecord& drive) {
    return drive.recordKind == kRecordKindImageFile ? "Image file" : busTypeText(drive.busType);
}

void addProgram(Lines& lines, const RecordedProgram& program) {
    lines.add("Program", program.name);
    lines.add("Version", program.version);
    lines.add("Build", program.build);
    lines.add("Machine", program.machine, kNotTold);
    lines.add("User", program.user, kNotTold);
}

void addCase(Lines& lines, const CaseInformation& information) {
    lines.add("Case number", information.caseNumber, "none");
    lines.add("Examiner", information.examiner, "none");
    lines.add("Note", information.note, "none");
}

void addSource(Lines& lines, const RecordedSource& source) {
    lines.add("Drive number", formatText("%d", source.driveNumber));
    lines.add("Transport", source.transport, kNotTold);
    lines.add("Model", source.model, kNotTold);
    lines.add("Serial number", source.serialNumber, kNotTold);
    lines.add("Serial number told by the device", source.deviceSerialNumber, kNotTold);
    lines.add("Serial number printed on the device", source.printedSerialNumber, kNotTold);
    lines.add("Firmware", source.firmware, kNotTold);
    lines.add("Size in bytes", number(source.sizeBytes));
    lines.add("Sectors", number(source.sizeBytes / source.sectorSize));
    lines.add("Sector size in bytes", number(source.sectorSize));
    lines.add("Read-only before", yesOrNo(source.readOnlyBefore));
    lines.add("Read-only after", yesOrNo(source.readOnlyAfter));
}

/// "sectors 128 to 255, offset 65536 bytes, length 65536 bytes"
std::string placeText(const MappedRange& place, std::uint64_t sectorSize) {
    const std::uint64_t last = place.offset + place.length - 1;
    return formatText("sectors %" PRIu64 " to %" PRIu64 ", offset %" PRIu64 " bytes, length %" PRIu64 " bytes",
                      place.offset / sectorSize, last / sectorSize, place.offset, place.length);
}

void addUnreadable(Lines& lines, const AcquisitionRecord& record) {
    lines.add("Unreadable ranges", number(record.unreadable.size()));
    for (std::size_t i = 0; i < record.unreadable.size(); ++i) {
        lines.add("Unreadable range " + number(i + 1), placeText(record.unreadable[i], record.source.sectorSize));
    }
}

void addOutcome(Lines& lines, const AcquisitionRecord& record) {
    lines.add("Image", record.image);
    lines.add("Map", record.map);
    lines.add("Start", momentText(record.begin));
    lines.add("End", record.end ? momentText(*record.end) : "not yet");
    lines.add("Ending", record.ending);
    lines.add("Lost", record.losses);
    lines.add("Stopped by", record.stoppedBy);
    lines.add("MD5", record.md5 ? hexText(*record.md5) : "not made");
    lines.add("SHA-256", record.sha256 ? hexText(*record.sha256) : "not made");
    lines.add("Bytes missing from the image", number(record.missingBytes));
    addUnreadable(lines, record);
    lines.add("Write failures", number(record.writeFailures));
}

void addVerification(Lines& lines, const std::optional<RecordedVerification>& verification) {
    lines.add("Verification", verification ? verification->outcome : "not made");
    if (verification) {
        lines.add("Verification start", momentText(verification->begin));
        lines.add("Verification end", verification->end ? momentText(*verification->end) : "not yet");
    }
}

} // namespace

RecordedSource recordedSource(const DriveRecord& drive) {
    return {.driveNumber = drive.driveNumber,
            .transport = std::string(transportOf(drive)),
            .model = std::string(drive.model.view()),
            .serialNumber = std::string(drive.serialNumber.view()),
            .deviceSerialNumber = deviceSerialNumber(drive.device),
            .printedSerialNumber = drive.printed.serialNumber,
            .firmware = std::string(drive.firmware.view()),
            .sizeBytes = static_cast<std::uint64_t>(std::max<std::int64_t>(drive.sizeBytes, 0)),
            .sectorSize = sectorSizeOf(drive),
            .readOnlyBefore = {},
            .readOnlyAfter = {}};
}

std::string acquisitionRecordText(const AcquisitionRecord& record) {
    Lines lines;
    addProgram(lines, record.program);
    lines.add("Job", record.job);
    addCase(lines, record.caseInformation);
    addSource(lines, record.source);
    addOutcome(lines, record);
    addVerification(lines, record.verification);
    return lines.take();
}

} // namespace torvane
