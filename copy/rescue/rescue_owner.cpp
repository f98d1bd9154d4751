#include "copy/rescue/rescue_owner.h"

#include "base/ascii.h"
#include "base/one_line.h"
#include "records/drive_record.h"

#include <algorithm>

namespace torvane {

namespace {

/// Drives without a serial number are told from each other by nothing that a map or a record holds.
RescueOwner thisOrOneLikeIt(const DriveRecord& drive) {
    return withoutBlanksAround(drive.serialNumber.view()).empty() ? RescueOwner::kNotTold : RescueOwner::kThisDrive;
}

/// As maps and records have it.
std::string asRecorded(std::string_view text) {
    const std::string_view shown = withoutBlanksAround(text);
    return shown.empty() ? "not told" : oneLine(shown);
}

/// Every serial number by which the drive goes, as far as it tells any.
std::vector<std::string> serialNumbersOf(const DriveRecord& drive) {
    std::vector<std::string> numbers{asRecorded(drive.serialNumber.view()),
                                     asRecorded(deviceSerialNumber(drive.device)),
                                     asRecorded(drive.printed.serialNumber)};
    std::erase(numbers, asRecorded({}));
    return numbers;
}

RescueOwner otherOrRenamed(bool sharesSerialNumber) {
    return sharesSerialNumber ? RescueOwner::kPerhapsThis : RescueOwner::kOtherDrive;
}

/// Whether what stands of the source in a job's comment ends in a serial number of this drive.
bool namesSerialNumber(std::string_view source, const DriveRecord& drive) {
    return std::ranges::any_of(serialNumbersOf(drive), [source](const std::string& number) {
        return source.find("] [" + number + "]") != std::string_view::npos ||
               source.find("(printed: serial number " + number + ")") != std::string_view::npos ||
               source.find("(printed: serial number " + number + ",") != std::string_view::npos;
    });
}

/// The comment of a job: "Image of drive 3 [MODEL] [SERIAL] into ...", or "... onto drive 4 [MODEL] [SERIAL]".
RescueOwner ownerByComments(const std::vector<std::string>& comments, const DriveRecord& drive) {
    const std::string name =
        oneLine(std::string("[").append(drive.model.view()).append("] [").append(drive.serialNumber.view()) + "]");
    for (const std::string& comment : comments) {
        const std::size_t source = comment.find(" of drive ");
        if (source != std::string::npos && comment.find('[', source) != std::string::npos) {
            const std::size_t found = comment.find(name, source);
            if (found != std::string::npos && found == comment.find('[', source)) {
                return thisOrOneLikeIt(drive);
            }
            const std::string_view onwards = std::string_view(comment).substr(source);
            return otherOrRenamed(namesSerialNumber(onwards.substr(0, onwards.find(" onto ")), drive));
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

constexpr std::string_view kSerialNumberKeys[] = {"Serial number", "Serial number told by the device",
                                                  "Serial number printed on the device"};

RescueOwner ownerByRecord(std::string_view record, const DriveRecord& drive) {
    const std::optional<std::string_view> model = valueOf(record, "Model");
    const std::optional<std::string_view> serial = valueOf(record, "Serial number");
    const std::optional<std::string_view> size = valueOf(record, "Size in bytes");
    if (!model || !serial || !size) {
        return RescueOwner::kNotTold;
    }
    if (*size != std::to_string(drive.sizeBytes)) {
        return RescueOwner::kOtherDrive;
    }
    if (*model == asRecorded(drive.model.view()) && *serial == asRecorded(drive.serialNumber.view())) {
        return thisOrOneLikeIt(drive);
    }
    return otherOrRenamed(std::ranges::any_of(serialNumbersOf(drive), [record](const std::string& number) {
        return std::ranges::any_of(kSerialNumberKeys,
                                   [&](std::string_view key) { return valueOf(record, key) == number; });
    }));
}

} // namespace

RescueOwner rescueOwner(const std::vector<std::string>& comments, const std::optional<std::string>& record,
                        const DriveRecord& drive) {
    const RescueOwner byComments = ownerByComments(comments, drive);
    const RescueOwner byRecord = record ? ownerByRecord(*record, drive) : RescueOwner::kNotTold;
    if (byRecord == RescueOwner::kOtherDrive) {
        return byRecord;
    }
    // The record knows more numbers of the drive than a comment, and stays as it was when others go on.
    if (byComments == RescueOwner::kOtherDrive) {
        return byRecord == RescueOwner::kNotTold ? byComments : RescueOwner::kPerhapsThis;
    }
    if (byComments == RescueOwner::kPerhapsThis || byRecord == RescueOwner::kPerhapsThis) {
        return RescueOwner::kPerhapsThis;
    }
    return byComments == RescueOwner::kNotTold ? byRecord : RescueOwner::kThisDrive;
}

} // namespace torvane
