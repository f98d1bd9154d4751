#include "copy/jobs/rescue_plan.h"

#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/hash_files.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/new_image.h"
#include "copy/jobs/rescue_samples.h"
#include "copy/jobs/rescue_target.h"
#include "copy/rescue/rescue_map.h"
#include "copy/rescue/rescue_owner.h"
#include "records/drive_texts.h"
#include "records/sector_size.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <variant>
#include <vector>

namespace torvane {

namespace {

bool isMapOfTheSource(const CopyJob& job, const MapFile& file, const std::string& path,
                      const std::optional<std::string>& record) {
    const std::string drive = jobDriveText(*job.order.source);
    const RescueOwner owner = rescueOwner(file.comments, record, *job.order.source);
    switch (owner) {
    case RescueOwner::kThisDrive:
        return true;
    case RescueOwner::kOtherDrive:
        tellRescueNotBegun(job, "[" + path + "], or the record beside it, is of another drive than " + drive +
                                    ". Nothing was read or written");
        return false;
    case RescueOwner::kPerhapsThis:
    case RescueOwner::kNotTold:
        break;
    }
    const std::string told = owner == RescueOwner::kNotTold
                                 ? "] does not tell which drive it is of."
                                 : "], or the record beside it, names a drive with one of the same serial numbers, and "
                                   "otherwise by another name: so a drive appears behind another bridge.";
    const std::string question = "[" + path + told + " Is it of " + drive +
                                 "? If it is not, the copy becomes a mixture of two drives, and is lost";
    return job.system.askDefaultNo("***** WHICH DRIVE? *****", question.c_str());
}

/// The map at that path, of this drive; none, and the user was told, where it is none or of another drive.
std::optional<RescueOrigin> takeUpMap(const CopyJob& job, JobAccount& account, const std::string& path,
                                      const std::optional<std::string>& record) {
    const std::optional<std::string> text = job.rescue->readText(path);
    if (!text) {
        tellRescueNotBegun(job,
                           "There is no map [" + path +
                               "]. Without it nobody knows what is missing. Nothing was read or written. Choose an "
                               "image that has its map beside it, or begin a new one");
        return std::nullopt;
    }
    std::variant<MapFile, MapFault> read = readMapFile(*text, driveBytes(*job.order.source));
    if (const auto* const fault = std::get_if<MapFault>(&read)) {
        tellRescueNotBegun(job, "[" + path + "] is no map of this drive: line " + std::to_string(fault->line) + ": " +
                                    fault->reason + ". Nothing was read or written");
        return std::nullopt;
    }
    auto& file = std::get<MapFile>(read);
    if (!isMapOfTheSource(job, file, path, record)) {
        return std::nullopt;
    }
    const RescueOrigin origin = rescueOriginOf(file, job.order.rescue.fromEnd);
    if (origin.fromRescue) {
        account.evidence.rescue = RescuePlace{.status = file.status, .fromEnd = job.order.rescue.fromEnd};
    }
    account.map = std::move(file.map);
    return origin;
}

/// True once the map lies where it belongs; the user is told when it cannot.
bool isMapSaved(const CopyJob& job, JobAccount& account) {
    if (saveMap(job, account)) {
        return true;
    }
    tellRescueNotBegun(job, "The map [" + account.evidence.map.path +
                                "] could not be written. Without it the rescue could never go on. Nothing was read");
    return false;
}

// --- whether a copy is what its map tells ---

/// In the log, since neither map nor record tells of them: both call these sectors finished.
void logUnequal(const CopyJob& job, const std::vector<std::uint64_t>& places) {
    const std::uint64_t sector = sectorSizeOf(*job.order.source);
    for (const std::uint64_t place : places) {
        job.system.logError("Rescue: sector " + std::to_string(place / sector) + " of " +
                            jobDriveText(*job.order.source) + " is not what the copy holds, which stays as it is");
    }
}

bool mayGoOnWith(const CopyJob& job, const Samples& samples) {
    switch (samples.verdict) {
    case SampleVerdict::kSame:
        return true;
    case SampleVerdict::kMostlySame:
        logUnequal(job, samples.unequal);
        return job.system.askDefaultNo(
            "***** COPY HAS CHANGED *****",
            "Most of what the map calls finished is what the drive holds, but not all: copy or drive was written to in "
            "some places, or the copy cannot be read there. The log names those that were found. They stay as they "
            "are. Go on with the copy?");
    case SampleVerdict::kOther:
        tellRescueNotBegun(
            job, "What the map calls finished is not what the drive holds: the copy, or the drive, was "
                 "written to since, or the map is of another copy. Nothing was written. Begin a new image, or begin "
                 "the rescue onto the DESTINATION anew");
        return false;
    case SampleVerdict::kGone:
        tellRescueNotBegun(job, "The drive does not answer any more. Nothing was written. Load the drives again");
        return false;
    case SampleVerdict::kNotTold:
        break;
    }
    return job.system.askDefaultNo(
        "***** COPY NOT COMPARED *****",
        "Nothing of what the map calls finished could be compared with the drive, so nobody knows "
        "whether the copy is still what the map tells. Go on with it?");
}

/// Where a copy that may be gone on with was left.
struct GoOnFrom {
    RescueOrigin origin;
    Samples samples;
};

/// The end of the last place that is in the copy.
std::uint64_t finishedEnd(const SourceMap& map) {
    std::uint64_t end = 0;
    for (const MappedRange& range : map.ranges()) {
        end = range.status == RangeStatus::kFinished ? range.offset + range.length : end;
    }
    return end;
}

CopyReader readerOf(RescueImage& image) {
    return [&image](std::uint64_t offset, std::span<std::byte> bytes) { return image.read(offset, bytes); };
}

CopyReader readerOf(DriveIo& drives, const DriveRecord& drive) {
    return [&drives, &drive](std::uint64_t offset, std::span<std::byte> bytes) {
        return reachAndRead(drives, drive, offset, bytes) == TransferOutcome::kWhole;
    };
}

// --- into an image ---

/// Null, and the user was told, when the image cannot be written as the rescue is to go.
std::unique_ptr<RescueImage> openRescueImage(const CopyJob& job, const std::string& path) {
    std::unique_ptr<RescueImage> image = job.rescue->openImage(path);
    if (!image) {
        job.system.logError("Could not open [" + path + "] for writing");
        tellRescueNotBegun(job,
                           "The image [" + path +
                               "] could not be opened for writing: it is read-only, or another program has it open. "
                               "Nothing was read or written");
    } else if (job.order.rescue.fromEnd && !image->keepsHoles() && image->size() < driveBytes(*job.order.source)) {
        tellRescueNotBegun(job, "The file system of [" + path +
                                    "] would fill the whole image with zeros first. Nothing was read or written. Begin "
                                    "from the start, or choose a folder on a volume with NTFS");
        return nullptr;
    }
    return image;
}

RescuePlan planNewImage(const CopyJob& job, JobAccount& account) {
    job.display.setImagePlace(job.order.path);
    NewImage created = createNumberedImage(job, *job.order.source);
    if (!created.file) {
        job.display.setStatus("Could not CREATE DESTINATION image");
        tellRescueNotBegun(job, "No image could be created in [" + job.order.path + "]. Nothing was read");
        return {};
    }
    created.file.reset();
    RescuePlan plan;
    if (std::unique_ptr<RescueImage> image = openRescueImage(job, created.name.path)) {
        job.display.setImagePlace(created.name.path);
        account.map = SourceMap(driveBytes(*job.order.source));
        beginImageEvidence(job, account, created.name.path, created.name.number);
        showUnderWay(job, account);
        if (isMapSaved(job, account)) {
            plan.readCopy = readerOf(*image);
            plan.target = std::move(image);
        }
    }
    return plan;
}

/// Its hash files tell what it was.
bool mayLoseItsHashes(const CopyJob& job, const std::string& image) {
    if (!job.system.fileExists(hashFileOfImage(image)) && !job.system.fileExists(sha256FileName(image))) {
        return true;
    }
    const std::string question = "A hash file lies beside [" + image +
                                 "]. What is rescued changes the image, and its hash is another one then. Continue?";
    return job.system.askDefaultNo("***** IMAGE HAS A HASH *****", question.c_str());
}

bool hasItsMapsSize(const CopyJob& job, RescueImage& image, const SourceMap& map) {
    if (image.size() >= finishedEnd(map) && image.size() <= map.size()) {
        return true;
    }
    tellRescueNotBegun(job, "The image [" + job.order.path +
                                "] has not the size that its map tells. Nothing was read or written");
    return false;
}

RescuePlan planOldImage(const CopyJob& job, JobAccount& account, RescueDrive& drive) {
    const std::string& path = job.order.path;
    if (!mayLoseItsHashes(job, path)) {
        return {};
    }
    const std::optional<RescueOrigin> origin =
        takeUpMap(job, account, mapFileName(path), job.rescue->readText(acquisitionFileOfImage(path)));
    std::unique_ptr<RescueImage> image = origin ? openRescueImage(job, path) : nullptr;
    if (!image || !hasItsMapsSize(job, *image, account.map)) {
        return {};
    }
    const CopyReader readCopy = readerOf(*image);
    // Once more: the boxes may have been answered hours later.
    if (!isSourceUnchanged(job)) {
        return {};
    }
    Samples samples = compareSamples(job, drive, account.map, readCopy);
    if (!mayGoOnWith(job, samples)) {
        return {};
    }
    job.display.setImagePlace(path);
    beginOldImageEvidence(job, account, path);
    RescuePlan plan{.target = nullptr, .origin = *origin, .readCopy = readCopy, .samples = std::move(samples)};
    plan.target = isMapSaved(job, account) ? std::move(image) : nullptr;
    return plan;
}

// --- onto a drive ---

/// What a destination has to be for every read to find its place there.
bool fits(const CopyJob& job) {
    const DriveRecord& source = *job.order.source;
    const DriveRecord& destination = *job.order.destination;
    if (driveBytes(destination) < driveBytes(source)) {
        tellRescueNotBegun(job,
                           "The DESTINATION is smaller than the SOURCE. Nothing was read or written. Choose a drive "
                           "that is at least as large, or rescue into an image");
        return false;
    }
    if (sectorSizeOf(source) % sectorSizeOf(destination) != 0) {
        tellRescueNotBegun(job,
                           "The sectors of the DESTINATION are larger than those of the SOURCE. Nothing was read or "
                           "written. Rescue into an image, and write that to the drive");
        return false;
    }
    return true;
}

bool isWithoutVolumes(const CopyJob& job) {
    if (isDestinationUnmounted(job)) {
        return true;
    }
    tellRescueNotBegun(job,
                       "Windows has mounted volumes on the DESTINATION, and refuses writes inside them. Nothing was "
                       "read or written. Press 'Disable Drive Mounting', plug the DESTINATION in anew, load the "
                       "drives and start again");
    return false;
}

/// The map of a destination that an earlier rescue has left.
std::optional<GoOnFrom> takeUpDestination(const CopyJob& job, JobAccount& account, RescueDrive& drive) {
    const DriveRecord& destination = *job.order.destination;
    const std::string path = rescueMapFileName(*job.order.source, destination);
    const std::optional<RescueOrigin> origin = takeUpMap(job, account, path, std::nullopt);
    if (!origin) {
        return std::nullopt;
    }
    if (!hasWholeSectors(account.map, static_cast<std::uint32_t>(sectorSizeOf(destination)))) {
        tellRescueNotBegun(job, "[" + path +
                                    "] has places that end within a sector of the DESTINATION. Nothing was read or "
                                    "written");
        return std::nullopt;
    }
    // Only now: the box may have been answered hours later.
    if (!areDrivesUnchanged(job) || !isWithoutVolumes(job)) {
        return std::nullopt;
    }
    Samples samples = compareSamples(job, drive, account.map, readerOf(job.drives, destination));
    if (!mayGoOnWith(job, samples)) {
        return std::nullopt;
    }
    beginRescueEvidence(job, account);
    return isMapSaved(job, account) ? std::optional(GoOnFrom{*origin, std::move(samples)}) : std::nullopt;
}

/// What an earlier rescue has told of the destination is kept aside: "<map>.old". False, and the user was told, when it
/// cannot be.
bool keepEarlierMap(const CopyJob& job) {
    const std::string path = rescueMapFileName(*job.order.source, *job.order.destination);
    const std::optional<std::string> earlier = job.rescue->readText(path);
    if (!earlier || job.system.saveText(path + ".old", *earlier, TextUse::kReplaced)) {
        return true;
    }
    tellRescueNotBegun(job, "The earlier map [" + path + "] could not be kept as [" + path +
                                ".old]. Nothing was read or written");
    return false;
}

/// A destination that is cleaned first. The new map lies there before: whatever comes between, nobody goes on by the
/// earlier one with a destination that was cleaned.
std::optional<GoOnFrom> takeNewDestination(const CopyJob& job, JobAccount& account) {
    const std::uint64_t bytes = driveBytes(*job.order.source);
    if (!areDrivesUnchanged(job) || !keepEarlierMap(job)) {
        return std::nullopt;
    }
    account.map = SourceMap(bytes);
    beginRescueEvidence(job, account);
    if (!isMapSaved(job, account) ||
        prepareDestination(job, BlockOrder::forward(bytes, job.blockSize)) != Readiness::kReady) {
        return std::nullopt;
    }
    return GoOnFrom{RescuePlan{}.origin, {}};
}

RescuePlan planDrive(const CopyJob& job, JobAccount& account, RescueDrive& drive) {
    if (!fits(job)) {
        return {};
    }
    std::optional<GoOnFrom> from =
        job.order.rescue.goOn ? takeUpDestination(job, account, drive) : takeNewDestination(job, account);
    if (!from) {
        return {};
    }
    return {.target = std::make_unique<DriveRescueTarget>(job.drives, *job.order.destination),
            .origin = from->origin,
            .readCopy = readerOf(job.drives, *job.order.destination),
            .samples = std::move(from->samples)};
}

} // namespace

RescuePlan planRescue(const CopyJob& job, JobAccount& account, RescueDrive& drive) {
    if (job.order.destination != nullptr) {
        return planDrive(job, account, drive);
    }
    return job.order.rescue.goOn ? planOldImage(job, account, drive) : planNewImage(job, account);
}

void tellRescueNotBegun(const CopyJob& job, const std::string& text) {
    job.system.stop("***** RESCUE NOT STARTED *****", text.c_str());
}

} // namespace torvane
