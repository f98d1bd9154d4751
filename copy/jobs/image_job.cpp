#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/job_steps.h"

namespace torvane {

std::uint32_t runImageToFile(const CopyJob& job) {
    DriveRecord& source = *job.state.imageSource;
    clearJobFlags(job.state, kTrackStartX, kImageCarY);
    source.badReadCount = 0;

    const ImageFileName name = job.system.nextImageName(job.destinationPath, source);
    std::unique_ptr<ImageFile> image = job.system.createImage(name.path);
    if (!image) {
        job.display.setStatus("Could not CREATE DESTINATION image");
        showNotStarted(job, source);
        return 0;
    }
    DriveBlocks sourceBlocks(job.system, source);
    BlockPipeline blocks(sourceBlocks, BlockOrder::forward(driveBytes(source), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        showNotStarted(job, source);
        return 0;
    }
    JobProgress progress(job, blocks.order(),
                         {.track = kImageTrack, .label = " Status", .activity = "Imaging", .drives = {&source}});
    const bool wanted = showIdle(job);

    JobLosses losses;
    const auto copyBlock = [&](const Block& block) {
        settleDriveBlock(job, source, block, losses);
        const bool written = image->write(block.bytes);
        losses.failedWrites += written ? 0 : 1;
        return written;
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = kExplosionMilliseconds};
    const RunEnd end = wanted ? moveBlocks(job, blocks, progress, rule, copyBlock) : RunEnd::kLeftEarly;

    progress.setDriveStatus(runOutcomeText(end, losses));
    if (end == RunEnd::kGaveUp) {
        image.reset();
        // The running flag stays set on purpose: the dialog cannot be left before "Terminate Image".
        job.display.setStatus("Could not WRITE to DESTINATION image");
        return 0;
    }
    if (movedFullBlocks(end)) {
        showSuccess(job, " Image  SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image Terminated -- Not Completed", kExplosionMilliseconds);
    }
    image.reset();
    job.running = 0;
    job.display.repaintTrack(kImageTrack);
    return 1;
}

} // namespace torvane
