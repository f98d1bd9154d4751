#include "copy/jobs/copy_steps.h"
#include "copy/jobs/verify_steps.h"

namespace torvane {

namespace {

/// Whether the image is the one that the order's digests are of; none when the comparison could not be made. The user
/// was told. Stopped meanwhile, it compares what was read, like the verification behind a forensic image.
std::optional<bool> verifyImage(const CopyJob& job) {
    std::unique_ptr<ImageFile> image = job.system.openImage(job.order.path, ImageUse::kCheck);
    if (!image) {
        job.display.setStatus("Could not open image for VERIFICATION");
        return std::nullopt;
    }
    ImageSource imageSource(*image);
    BlockPipeline blocks(imageSource, BlockOrder::forward(image->size(), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        return std::nullopt;
    }
    if (!showIdle(job)) {
        return std::nullopt; // stopped before it has read anything
    }
    CopyProgress progress(job, blocks.order(),
                          {.track = kImageTrack, .label = " Status", .activity = "Verifying", .drives = {}});
    job.display.setStatus(" Beginning Verification");
    const Digests& known = job.order.known;
    const std::optional<Digests> made = digestsOfImage(job, blocks, progress, known);
    image.reset();
    job.claim.lower();
    if (!made) {
        return std::nullopt;
    }
    const bool equal = agree(known, *made);
    job.track.succeeded = equal ? 1 : 0;
    job.display.repaintTrack(kImageTrack);
    job.display.showDigests(known, *made);
    // Before the box, which may wait for its answer until the morning.
    logVerification(job, job.order.path, equal ? "verified" : "not verified");
    job.display.callUser(equal);
    showVerdict(job, known, *made);
    return equal;
}

} // namespace

std::uint32_t runVerifyImage(const CopyJob& job) {
    clearTrack(job.track, kTrackStartX, kImageCarY);
    job.display.setLosses("", false);
    job.display.showDigests({}, {});
    logVerification(job, job.order.path, "begins");
    if (verifyImage(job)) {
        return 1;
    }
    logVerification(job, job.order.path, "could not be made");
    job.display.callUser(false);
    return 0;
}

} // namespace torvane
