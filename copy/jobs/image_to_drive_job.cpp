#include "copy/jobs/comparison_steps.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/job_account.h"
#include "records/sector_size.h"

#include <optional>

namespace torvane {

namespace {

/// Null, and the user was told, when the image cannot be opened.
std::unique_ptr<ImageFile> openSourceImage(const CopyJob& job) {
    std::unique_ptr<ImageFile> image = job.system.openImage(job.order.path, ImageUse::kSource);
    if (!image) {
        const std::string text = "ImageToDrive: [" + job.order.path + "] OPEN_EXISTING FAILED";
        job.system.logError(text);
        job.system.stop("***** FATAL SYSTEM ERROR *****", text.c_str());
    }
    return image;
}

/// The bytes to copy; none when the image does not fit and the user does not want it cut.
std::optional<std::uint64_t> bytesToCopy(const CopyJob& job, std::uint64_t imageBytes, std::uint64_t driveSize) {
    if (imageBytes <= driveSize) {
        return imageBytes;
    }
    if (!job.system.askDefaultNo(
            "***** Image File Too Large *****",
            "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?")) {
        return std::nullopt;
    }
    return driveSize;
}

/// An image that was cut because the user wanted it so is no failure of the drive.
std::string outcomeForDrive(RunEnd end, JobLosses losses, const std::optional<Comparison>& comparison) {
    losses.bytesNotCopied = 0;
    return copyOutcomeText(end, losses, comparison);
}

/// The image is read once more from its medium, not from the system's cache.
Comparison compareWithImage(const CopyJob& job, const CopyRange& range, const BlockOrder& order,
                            const JobLosses& losses) {
    const std::unique_ptr<ImageFile> image = job.system.openImage(job.order.path, ImageUse::kCheck);
    if (!image) {
        job.system.logError("Could not open [" + job.order.path + "] for VERIFICATION");
        return {};
    }
    ImageSource imageSource(*image);
    LimitedSource limited(imageSource, range.bytes, range.sourceEnd);
    return compareWithSource(job, {.source = limited, .range = range, .order = order, .isLost = {}, .losses = losses});
}

Stopper stopperOf(RunEnd end) {
    if (end == RunEnd::kGaveUp) {
        return Stopper::kFailedRead;
    }
    return end == RunEnd::kWhole ? Stopper::kNobody : Stopper::kUser;
}

std::uint32_t imageToDrive(const CopyJob& job, JobAccount& account) {
    DriveRecord& destination = *job.order.destination;
    clearTrack(job.track, kTrackStartX, kCloneCarY);

    std::unique_ptr<ImageFile> opened = openSourceImage(job);
    if (!opened) {
        showNotStarted(job, destination);
        return 0;
    }
    // But for a failed read the image stays open, and so protected against writing, until the program ends.
    ImageFile& image = *job.keptImages.emplace_back(std::move(opened));
    const std::optional<std::uint64_t> bytes = bytesToCopy(job, image.size(), driveBytes(destination));
    if (!bytes) {
        return endDeclined(job);
    }
    const CopyRange range = copyRange(*bytes, {.destination = sectorSizeOf(destination)}, job.blockSize);
    if (!isPaddingWanted(job, range, "image")) {
        return endDeclined(job);
    }
    ImageSource imageSource(image);
    LimitedSource limited(imageSource, range.bytes, range.sourceEnd);
    DriveSink sink(job.drives, destination);
    const BlockOrder order = BlockOrder::forward(range.orderedBytes, job.blockSize);
    std::optional<BlockPipeline> blocks(std::in_place, limited, order);
    if (!blocks->hasBuffers()) {
        reportNoMemory(job);
        showNotStarted(job, destination);
        return 0;
    }
    const Readiness readiness = showIdle(job) ? prepareDestination(job, order) : Readiness::kStopped;
    if (readiness == Readiness::kRefused) {
        return endRefused(job);
    }
    const bool unmounted = readiness == Readiness::kReady && isDestinationUnmounted(job);
    CopyProgress progress(job, order,
                          {.track = kCloneTrack,
                           .label = " Status",
                           .activity = "Writing image",
                           .drives = {&destination},
                           .losses = &account.losses});

    JobLosses& losses = account.losses;
    expectBytes(account, image.size(), range.bytes);
    const auto copyBlock = [&](const Block& block) {
        if (block.outcome != TransferOutcome::kWhole) {
            ++losses.unreadableBlocks;
            return false;
        }
        storeBlock(job, sink, forDestination(block, range), account);
        return true;
    };
    // The source is a file: there is no limit of unreadable blocks, the first one ends the job.
    RunEnd end = RunEnd::kLeftEarly;
    if (readiness == Readiness::kReady) {
        beginDriveEvidence(job, account);
        end = moveBlocks(job, *blocks, progress, {}, copyBlock);
        flushStored(sink, end, account);
        losses.mountedMeanwhile = unmounted && wasMountedMeanwhile(job, sink);
        account.comparison = compareIfWanted(job, end, [&] {
            endBlocks(job, account, endingInWords(end), stopperOf(end));
            blocks.reset(); // there is no memory for both
            return compareWithImage(job, range, order, losses);
        });
        adoptNewTable(job, sink);
    }

    concludeRun(job, account, endingInWords(end), stopperOf(end));
    progress.setDriveStatus(outcomeForDrive(end, losses, account.comparison));
    if (end == RunEnd::kGaveUp) {
        job.keptImages.pop_back();
        job.display.setStatus("Could not READ FROM SOURCE image. TERMINATING");
        job.claim.lower();
        return 0;
    }
    if (isRefuted(account.comparison)) {
        showFailure(job, kNotVerified, kExplosionMilliseconds);
    } else if (movedFullBlocks(end)) {
        showSuccess(job, " Image To Drive SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image To Drive Terminated -- Not Completed", kExplosionMilliseconds);
    }
    job.claim.lower();
    job.display.repaintTrack(kCloneTrack);
    return 1;
}

} // namespace

std::uint32_t runImageToDrive(const CopyJob& job) {
    return runOntoDrive(job, [&](JobAccount& account) { return imageToDrive(job, account); });
}

} // namespace torvane
