#include "copy/rescue/rescue_owner.h"

#include "base/ascii.h"
#include "base/one_line.h"
#include "records/drive_record.h"

namespace torvane {

namespace {

/// Drives without a serial number are told from each other by nothing that a map or a record holds.
RescueOwner thisOrOneLikeIt(const DriveRecord& drive) {
    return withoutBlanksAround(drive.serialNumber.view()).empty() ? RescueOwner::kNotTold : RescueOwner::kThisDrive;
}

/// The comment of a job: "Image of drive 3 [MODEL] [SERIAL] into ...".
RescueOwner ownerByComments(const std::vector<std::string>& comments, const DriveRecord& drive) {
    const std::string name =
        oneLine(std::string("[").append(drive.model.view()).append("] [").append(drive.serialNumber.view()) + "]");
    for (const std::string& comment : comments) {
        const std::size_t source = comment.find(" of drive ");
        if (source != std::string::npos && comment.find('[', source) != std::string::npos) {
            const std::size_t found = comment.find(name, source);
            return found != std::string::npos && found == comment.find('[', source) ? thisOrOneLikeIt(drive)
                                                                                    : RescueOwner::kOtherDrive;
        }
    }
    return RescueOwner::kNotTold;
}

/// The value of a record's line; none when it has no such line.
std::optional<std::string_view> valueOf(std::string_view record, std::string_view key) {
    while (!record.empty()) {
        const std::size_t end = record.find('\n');
        std::string_view line = record.substr(0, end);
        record.remove_prefix(end == std::string_view::npos ? record.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.starts_with(key) && line.substr(key.size()).starts_with(": ")) {
            return line.substr(key.size() + 2);
        }
    }
    return std::nullopt;
}

std::string asRecorded(std::string_view text) {
    const std::string_view shown = withoutBlanksAround(text);
    return shown.empty() ? "not told" : oneLine(shown);
}

RescueOwner ownerByRecord(std::string_view record, const DriveRecord& drive) {
    const std::optional<std::string_view> model = valueOf(record, "Model");
    const std::optional<std::string_view> serial = valueOf(record, "Serial number");
    const std::optional<std::string_view> size = valueOf(record, "Size in bytes");
    if (!model || !serial || !size) {
        return RescueOwner::kNotTold;
    }
    const bool same = *model == asRecorded(drive.model.view()) && *serial == asRecorded(drive.serialNumber.view()) &&
                      *size == std::to_string(drive.sizeBytes);
    return same ? thisOrOneLikeIt(drive) : RescueOwner::kOtherDrive;
}

} // namespace

RescueOwner rescueOwner(const std::vector<std::string>& comments, const std::optional<std::string>& record,
                        const DriveRecord& drive) {
    const RescueOwner byComments = ownerByComments(comments, drive);
    const RescueOwner byRecord = record ? ownerByRecord(*record, drive) : RescueOwner::kNotTold;
    if (byComments == RescueOwner::kOtherDrive || byRecord == RescueOwner::kOtherDrive) {
        return RescueOwner::kOtherDrive;
    }
    return byComments == RescueOwner::kNotTold ? byRecord : RescueOwner::kThisDrive;
}

} // namespace torvane
