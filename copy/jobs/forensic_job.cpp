#include "copy/engine/hash_thread.h"
#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/hash_errors.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/job_steps.h"

#include <array>

namespace torvane {

namespace {

/// Percent of the full blocks at which the chase changes.
constexpr std::array<std::uint64_t, 5> kChasePercents{10, 30, 40, 50, 75};

void beginAnimation(CopyJobState& state, std::uint64_t fullBlocks) {
    state.animationBlocks = 0;
    for (std::size_t i = 0; i < kChasePercents.size(); ++i) {
        state.chasePoints[i] = static_cast<std::int64_t>(fullBlocks * kChasePercents[i] / 100);
    }
}

/// An image in the making: the file and the digest of what it was given.
struct ForensicImage {
    std::unique_ptr<ImageFile> file;
    std::unique_ptr<BlockHasher> hasher;
    JobLosses losses;
    bool hashFailed = false;
};

void stopWithExplosion(const CopyJob& job) {
    job.running = 0;
    job.display.startExplosionTimer(kExplosionMilliseconds);
}

// After a failure the block's other steps follow all the same; the cleared running flag then ends the job.
void storeBlock(const CopyJob& job, ForensicImage& image, HashThread& hashThread, const Block& block) {
    hashThread.begin(block.bytes);
    const bool written = image.file && image.file->write(block.bytes);
    const bool hashed = hashThread.finish();
    if (!written) {
        ++image.losses.failedWrites;
        image.file.reset();
        job.display.setStatus("Could not WRITE to DESTINATION image");
        stopWithExplosion(job);
    }
    if (!hashed) {
        image.hashFailed = true;
        showHashError(job, kNoHashData);
        image.file.reset();
        stopWithExplosion(job);
    }
}

RunEnd fillImage(const CopyJob& job, DriveRecord& source, BlockPipeline& blocks, JobProgress& progress,
                 ForensicImage& image) {
    HashThread hashThread(*image.hasher);
    const auto copyBlock = [&](const Block& block) {
        settleDriveBlock(job, source, block, image.losses);
        storeBlock(job, image, hashThread, block);
        return true;
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = kExplosionMilliseconds};
    return moveBlocks(job, blocks, progress, rule, copyBlock, [&] { ++job.state.animationBlocks; });
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
    DriveBlocks sourceBlocks(job.system, source);
    BlockPipeline blocks(sourceBlocks, BlockOrder::forward(driveBytes(source), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        return std::nullopt;
    }
    JobProgress progress(job, blocks.order(),
                         {.track = kImageTrack, .label = " Image Status", .activity = "Imaging", .drives = {&source}});
    job.display.setStatus(" Status: Idle");
    image.hasher = makeHasherOrTell(job);
    if (!image.hasher) {
        return std::nullopt;
    }
    job.display.repaint();
    const bool wanted = raiseRunning(job);
    beginAnimation(job.state, blocks.order().fullBlocks());

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
    image.file.reset();
    job.running = 0;
    return ImagedDrive{.mayBeVerified = movedFullBlocks(end),
                       .digest = digest.value_or(Md5Digest{}),
                       .account = {.whole = end == RunEnd::kWhole, .losses = image.losses}};
}

} // namespace

std::uint32_t runForensicImage(const CopyJob& job) {
    DriveRecord& source = *job.state.imageSource;
    clearJobFlags(job.state, kTrackStartX, kImageCarY);
    source.badReadCount = 0;

    const ImageFileName name = job.system.nextImageName(job.destinationPath, source);
    ForensicImage image;
    image.file = job.system.createImage(name.path);
    if (!image.file) {
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
    const std::string name = hashFileName(job.destinationPath, source.model.view(), number);
    if (!job.system.writeTextFile(name, hashFileText(source, digest, job.system.now()))) {
        job.system.log("ERROR", "Could not CREATE HASH file for [" + name + "]. Exiting.");
    }
}

} // namespace torvane
