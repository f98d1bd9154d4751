#include "copy/jobs/copy_steps.h"
#include "copy/jobs/verify_steps.h"

namespace torvane {

namespace {

constexpr std::string_view kNotMade = "could not be made";

std::string_view outcomeInWords(bool equal, bool stopped) {
    if (equal) {
        return "verified";
    }
    return stopped ? "not verified, stopped by the user" : "not verified";
}

/// `trouble` says what went wrong with the verification, and is empty when nothing did.
std::string imagingOutcome(const ImagingAccount& imaging, std::string_view trouble) {
    std::string ending(imaging.whole ? "" : kNotCompleted);
    ending.append(ending.empty() || trouble.empty() ? "" : ", ").append(trouble);
    return driveOutcomeText(ending, imaging.losses);
}

// An image that is verified and yet not whole is no success.
std::string verdictForDrive(bool equal, const ImagingAccount& imaging) {
    return equal ? imagingOutcome(imaging, "") + ", verified" : imagingOutcome(imaging, "not verified");
}

void showNoVerification(const CopyJob& job, const ImagingAccount& imaging) {
    job.system.setDriveStatus(*job.order.source, imagingOutcome(imaging, "verification failed"));
}

/// Whether the digests are equal; none when the comparison could not be made.
std::optional<bool> verify(const CopyJob& job, const std::string& imageName, const Digests& digests,
                           const ImagingAccount& imaging) {
    std::unique_ptr<ImageFile> image = job.system.openImage(imageName, ImageUse::kAgain);
    if (!image) {
        job.display.setStatus("Could not open image for VERIFICATION");
        showNoVerification(job, imaging);
        return std::nullopt;
    }
    job.track.succeeded = 0;
    if (!image->rewind()) {
        // An image that cannot be rewound stays open.
        job.keptImages.push_back(std::move(image));
        showNoVerification(job, imaging);
        return std::nullopt;
    }
    ImageSource imageSource(*image);
    BlockPipeline blocks(imageSource, BlockOrder::forward(image->size(), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        showNoVerification(job, imaging);
        return std::nullopt;
    }
    CopyProgress progress(job, blocks.order(),
                          {.track = kImageTrack,
                           .label = " Status",
                           .activity = "Verifying",
                           .drives = {job.order.source},
                           .losses = &imaging.losses}); // lost all the same
    job.claim.raiseAnew(); // the user has said yes since, whatever was asked of the imaging pass
    job.display.setStatus(" Beginning Verification");

    bool stopped = false;
    const auto tellNotMade = [&] { imaging.tellOutcome(kNotMade); };
    const std::optional<Digests> verified = digestsOfImage(job, blocks, progress, digests, tellNotMade, &stopped);
    if (!verified) {
        job.claim.leaveRaised(); // on purpose: the dialog cannot be left before "Terminate Image"
        showNoVerification(job, imaging);
        return std::nullopt;
    }
    image.reset();
    job.claim.lower();
    job.track.succeeded = 1;
    job.display.repaintTrack(kImageTrack);
    const bool equal = agree(digests, *verified);
    progress.setDriveStatus(verdictForDrive(equal, imaging));
    // Before the box, which may wait for its answer until the morning.
    imaging.tellOutcome(outcomeInWords(equal, stopped));
    logVerification(job, imageName, equal ? "verified" : "not verified");
    job.display.callUser(equal && imaging.whole && !hasLost(imaging.losses));
    showVerdict(job, digests, *verified);
    return equal;
}

} // namespace

int VerifyImageHash(const CopyJob& job, const std::string& imageName, const Digests& digests,
                    const ImagingAccount& imaging) {
    logVerification(job, imageName, "begins");
    if (verify(job, imageName, digests, imaging)) {
        return 1;
    }
    imaging.tellOutcome(kNotMade);
    logVerification(job, imageName, kNotMade);
    job.display.callUser(false);
    return 0;
}

} // namespace torvane
