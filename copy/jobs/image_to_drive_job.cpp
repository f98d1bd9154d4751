#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/job_steps.h"

#include <optional>

namespace torvane {

namespace {

/// Null, and the user was told, when the image cannot be opened.
std::unique_ptr<ImageFile> openSourceImage(const CopyJob& job) {
    std::unique_ptr<ImageFile> image = job.system.openImage(job.destinationPath);
    if (!image) {
        const std::string text = "ImageToDrive: [" + job.destinationPath + "] OPEN_EXISTING FAILED";
        job.system.log("ERROR", text);
        job.system.stop("***** FATAL SYSTEM ERROR *****", text.c_str());
    }
    return image;
}

/// The bytes to copy; none when the image does not fit and the user does not want it cut.
std::optional<std::uint64_t> bytesToCopy(const CopyJob& job, std::uint64_t imageBytes, std::uint64_t driveSize) {
    if (imageBytes <= driveSize) {
        return imageBytes;
    }
    if (!job.system.ask("***** Image File Too Large *****",
                        "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?")) {
        return std::nullopt;
    }
    return driveSize;
}

} // namespace

std::uint32_t runImageToDrive(const CopyJob& job) {
    DriveRecord& destination = *job.state.destination;
    clearJobFlags(job.state, kTrackStartX, kCloneCarY);

    std::unique_ptr<ImageFile> opened = openSourceImage(job);
    if (!opened) {
        showNotStarted(job, destination);
        return 0;
    }
    // But for a failed read the image stays open, and so protected against writing, until the program ends.
    ImageFile& image = *job.state.openImages.emplace_back(std::move(opened));
    const std::optional<std::uint64_t> bytes = bytesToCopy(job, image.size(), driveBytes(destination));
    if (!bytes) {
        return 0;
    }
    ImageBlocks sourceBlocks(image);
    BlockPipeline blocks(sourceBlocks, BlockOrder::forward(*bytes, job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        showNotStarted(job, destination);
        return 0;
    }
    const bool wanted = showIdle(job) && cleanDestination(job, blocks.order());
    JobProgress progress(
        job, blocks.order(),
        {.track = kCloneTrack, .label = " Status", .activity = "Writing image", .drives = {&destination}});

    JobLosses losses;
    const auto copyBlock = [&](const Block& block) {
        if (block.outcome != FetchOutcome::kWhole) {
            ++losses.unreadableBlocks;
            return false;
        }
        losses.failedWrites += job.system.write(destination, block.extent.offset, block.bytes) ? 0 : 1;
        return true;
    };
    // The source is a file: there is no limit of unreadable blocks, the first one ends the job.
    const RunEnd end = wanted ? moveBlocks(job, blocks, progress, {}, copyBlock) : RunEnd::kLeftEarly;

    progress.setDriveStatus(runOutcomeText(end, losses));
    if (end == RunEnd::kGaveUp) {
        job.state.openImages.pop_back();
        job.display.setStatus("Could not READ FROM SOURCE image. TERMINATING");
        job.running = 0;
        return 0;
    }
    if (movedFullBlocks(end)) {
        showSuccess(job, " Image To Drive SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image To Drive Terminated -- Not Completed", kExplosionMilliseconds);
    }
    job.running = 0;
    job.display.repaintTrack(kCloneTrack);
    return 1;
}

} // namespace torvane
