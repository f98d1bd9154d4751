#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/hash_errors.h"
#include "copy/jobs/image_names.h"

#include <array>

namespace torvane {

namespace {

/// Percent of the full blocks at which the chase changes.
constexpr std::array<std::uint64_t, 5> kChasePercents{10, 30, 40, 50, 75};

void beginAnimation(RaceTrackState& track, std::uint64_t fullBlocks) {
    track.animationBlocks = 0;
    for (std::size_t i = 0; i < kChasePercents.size(); ++i) {
        track.chasePoints[i] = static_cast<std::int64_t>(fullBlocks * kChasePercents[i] / 100);
    }
}

/// An image in the making: the file and the digest of what it was given.
struct ForensicImage {
    ImageSink file;
    std::unique_ptr<BlockHasher> hasher;
    JobLosses losses;
    bool hashFailed = false;
};

// The lowered flag ends the job, once the block's other steps have followed all the same.
void stopWithExplosion(const CopyJob& job) {
    job.claim.lower();
    job.display.startExplosionTimer(kExplosionMilliseconds);
}

void storeAndHash(const CopyJob& job, ForensicImage& image, HashingSink& sink, const Block& block) {
    if (!storeBlock(sink, block, image.losses)) {
        image.file.close();
        job.display.setStatus("Could not WRITE to DESTINATION image");
        stopWithExplosion(job);
    }
    if (!sink.hashedAll()) {
        image.hashFailed = true;
        showHashError(job, kNoHashData);
        image.file.close();
        stopWithExplosion(job);
    }
}

RunEnd fillImage(const CopyJob& job, DriveRecord& source, BlockPipeline& blocks, CopyProgress& progress,
                 ForensicImage& image) {
    HashingSink sink(image.file, *image.hasher);
    const auto copyBlock = [&](const Block& block) {
        settleBlock(job, source, block, image.losses);
        storeAndHash(job, image, sink, block);
        return true;
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = kExplosionMilliseconds};
    return moveBlocks(job, blocks, progress, rule, copyBlock, [&] { ++job.track.animationBlocks; });
}

std::string imagingOutcome(RunEnd end, const ForensicImage& image) {
    return end == RunEnd::kWhole && image.hashFailed ? driveOutcomeText("not hashed", image.losses)
                                                     : runOutcomeText(end, image.losses);
}

/// What an imaging pass leaves for the verification.
struct ImagedDrive {
    bool mayBeVerified = false; ///< every full block was moved
    Md5Digest digest{};
    ImagingAccount account;
};

/// The imaging pass from the prepared image on. None when the job has to end at once.
std::optional<ImagedDrive> imageDrive(const CopyJob& job, DriveRecord& source, const ImageFileName& name,
                                      ForensicImage image) {
    DriveSource driveSource(job.drives, source);
    BlockPipeline blocks(driveSource, BlockOrder::forward(driveBytes(source), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        return std::nullopt;
    }
    CopyProgress progress(job, blocks.order(),
                          {.track = kImageTrack, .label = " Image Status", .activity = "Imaging", .drives = {&source}});
    job.display.setStatus(" Status: Idle");
    image.hasher = makeHasherOrTell(job);
    if (!image.hasher) {
        return std::nullopt;
    }
    job.display.repaint();
    const bool wanted = job.claim.raise();
    beginAnimation(job.track, blocks.order().fullBlocks());

    const RunEnd end = wanted ? fillImage(job, source, blocks, progress, image) : RunEnd::kLeftEarly;
    if (movedFullBlocks(end)) {
        showSuccess(job, " Image SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image Terminated -- Not Completed", kExplosionMilliseconds);
    }
    const std::optional<Md5Digest> digest = image.hasher->digest();
    image.hashFailed = image.hashFailed || !digest;
    if (digest && movedFullBlocks(end)) {
        WriteHashFile(job, source, *digest, name.number);
    }
    progress.setDriveStatus(imagingOutcome(end, image));
    job.display.repaintTrack(kImageTrack);
    image.file.close();
    job.claim.lower();
    return ImagedDrive{.mayBeVerified = movedFullBlocks(end),
                       .digest = digest.value_or(Md5Digest{}),
                       .account = {.whole = end == RunEnd::kWhole, .losses = image.losses}};
}

} // namespace

std::uint32_t runForensicImage(const CopyJob& job) {
    DriveRecord& source = *job.order.source;
    clearTrack(job.track, kTrackStartX, kImageCarY);
    source.badReadCount = 0;
    if (!isSourceUnchanged(job)) {
        return endRefused(job);
    }

    const ImageFileName name = job.system.nextImageName(job.order.path, source);
    ForensicImage image{
        .file = ImageSink(job.system.openImage(name.path, ImageUse::kNew)), .hasher = nullptr, .losses = {}};
    if (!image.file.isOpen()) {
        job.display.setStatus("Could not CREATE DESTINATION image");
        showNotStarted(job, source);
        return 0;
    }
    const std::optional<ImagedDrive> imaged = imageDrive(job, source, name, std::move(image));
    if (!imaged) {
        showNotStarted(job, source);
        return 0;
    }
    if (imaged->mayBeVerified &&
        job.system.ask("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?")) {
        VerifyImageHash(job, name.path, imaged->digest, imaged->account);
    }
    return 1;
}

void WriteHashFile(const CopyJob& job, const DriveRecord& source, const Md5Digest& digest, std::int32_t number) {
    const std::string name = hashFileName(job.order.path, source.model.view(), number);
    if (!job.system.writeTextFile(name, hashFileText(source, digest, job.system.now()))) {
        job.system.logError("Could not CREATE HASH file for [" + name + "]. Exiting.");
    }
}

} // namespace torvane
