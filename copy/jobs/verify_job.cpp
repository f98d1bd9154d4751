#include "copy/jobs/copy_steps.h"
#include "copy/jobs/hash_errors.h"
#include "copy/jobs/image_names.h"

namespace torvane {

namespace {

void showVerdict(const CopyJob& job, const Md5Digest& imaged, const Md5Digest& verified) {
    job.system.print(digestLine("Match HASH", imaged));
    job.system.print(digestLine("Gen   HASH", verified));
    if (imaged == verified) {
        job.system.inform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    } else {
        job.system.inform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    }
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

/// Digest of the image as far as it is read before somebody asks to stop. None, and the user was told, when it could
/// not be made.
std::optional<Md5Digest> digestOfImage(const CopyJob& job, BlockPipeline& blocks, CopyProgress& progress) {
    const std::unique_ptr<BlockHasher> hasher = makeHasherOrTell(job);
    if (!hasher) {
        return std::nullopt;
    }
    std::uint64_t done = 0;
    const auto hashBlock = [&](const Block& block) {
        if (block.outcome != TransferOutcome::kWhole) {
            job.display.setStatus("Could not READ image for VERIFICATION");
            return false;
        }
        if (!hasher->add(block.bytes)) {
            showHashError(job, kNoHashData);
            return false;
        }
        return true;
    };
    if (moveBlocks(job, blocks, progress, {}, hashBlock, [&] { ++done; }) == RunEnd::kGaveUp) {
        return std::nullopt;
    }
    progress.update(done);
    const std::optional<Md5Digest> digest = hasher->digest();
    if (!digest) {
        showHashError(job, kNoHashParam);
    }
    return digest;
}

void logVerification(const CopyJob& job, const std::string& imageName, std::string_view state) {
    job.system.logJob(std::string("Verification of [").append(imageName).append("]: ").append(state));
}

/// Whether the digests are equal; none when the comparison could not be made.
std::optional<bool> verify(const CopyJob& job, const std::string& imageName, const Md5Digest& digest,
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
    CopyProgress progress(
        job, blocks.order(),
        {.track = kImageTrack, .label = " Status", .activity = "Verifying", .drives = {job.order.source}});
    job.claim.raiseAnew(); // the user has said yes since, whatever was asked of the imaging pass
    job.display.setStatus(" Beginning Verification");

    const std::optional<Md5Digest> verified = digestOfImage(job, blocks, progress);
    if (!verified) {
        job.claim.leaveRaised(); // on purpose: the dialog cannot be left before "Terminate Image"
        showNoVerification(job, imaging);
        return std::nullopt;
    }
    image.reset();
    job.claim.lower();
    job.track.succeeded = 1;
    job.display.repaintTrack(kImageTrack);
    const bool equal = *verified == digest;
    progress.setDriveStatus(verdictForDrive(equal, imaging));
    // Before the box, which may wait for its answer until the morning.
    logVerification(job, imageName, equal ? "verified" : "not verified");
    showVerdict(job, digest, *verified);
    return equal;
}

} // namespace

int VerifyImageHash(const CopyJob& job, const std::string& imageName, const Md5Digest& digest,
                    const ImagingAccount& imaging) {
    logVerification(job, imageName, "begins");
    if (verify(job, imageName, digest, imaging)) {
        return 1;
    }
    logVerification(job, imageName, "could not be made");
    return 0;
}

} // namespace torvane
