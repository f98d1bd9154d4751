#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/job_account.h"
#include "copy/jobs/new_image.h"

namespace torvane {

namespace {

std::uint32_t imageToFile(const CopyJob& job, JobAccount& account) {
    DriveRecord& source = *job.order.source;
    clearTrack(job.track, kTrackStartX, kImageCarY);
    source.badReadCount = 0;
    if (!isSourceUnchanged(job)) {
        return endRefused(job);
    }

    job.display.setImagePlace(job.order.path);
    NewImage created = createNumberedImage(job, source);
    ImageSink image(std::move(created.file));
    if (!image.isOpen()) {
        job.display.setStatus("Could not CREATE DESTINATION image");
        showNotStarted(job, source);
        return 0;
    }
    job.display.setImagePlace(created.name.path);
    expectBytes(account, driveBytes(source), driveBytes(source));
    beginImageEvidence(job, account, created.name.path, created.name.number);
    DriveSource driveSource(job.drives, source);
    BlockPipeline blocks(driveSource, BlockOrder::forward(driveBytes(source), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        account.stoppedBy = Stopper::kNoMemory;
        showNotStarted(job, source);
        return 0;
    }
    CopyProgress progress(job, blocks.order(),
                          {.track = kImageTrack,
                           .label = " Status",
                           .activity = "Imaging",
                           .drives = {&source},
                           .losses = &account.losses});
    const bool wanted = showIdle(job);

    const auto copyBlock = [&](const Block& block) {
        settleBlock(job, source, block, account);
        return storeBlock(job, image, block, account);
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = kExplosionMilliseconds};
    RunEnd end = RunEnd::kLeftEarly;
    if (wanted) {
        showUnderWay(job, account);
        end = moveBlocks(job, blocks, progress, rule, copyBlock);
    }
    if (!flushStored(image, end, account)) {
        end = RunEnd::kGaveUp;
    }

    concludeRun(job, account, endingInWords(end),
                end == RunEnd::kGaveUp ? Stopper::kFailedWrite : stopperOf(end, source));
    progress.setDriveStatus(runOutcomeText(end, account.losses));
    if (end == RunEnd::kGaveUp) {
        image.close();
        job.claim.leaveRaised(); // on purpose: the dialog cannot be left before "Terminate Image"
        job.display.setStatus("Could not WRITE to DESTINATION image");
        return 0;
    }
    if (movedFullBlocks(end)) {
        showSuccess(job, " Image  SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image Terminated -- Not Completed", kExplosionMilliseconds);
    }
    image.close();
    job.claim.lower();
    job.display.repaintTrack(kImageTrack);
    return 1;
}

} // namespace

std::uint32_t runImageToFile(const CopyJob& job) {
    JobAccount account;
    return runAccounted(job, account, [&] { return imageToFile(job, account); });
}

} // namespace torvane
