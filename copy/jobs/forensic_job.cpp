#include "base/file_name_part.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/hash_errors.h"
#include "copy/jobs/hash_files.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/job_account.h"
#include "copy/jobs/new_image.h"

#include <array>
#include <optional>

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

/// What keeps an image from being whole.
enum class ImageLoss { kNone, kNotWritten, kNotHashed, kNotOnMedium, kNoDigest, kNoSha256 };

/// An image in the making: the file and the digests of what it was given.
struct ForensicImage {
    ImageSink file;
    Hashers hashers;
    ImageLoss lost = ImageLoss::kNone;     ///< with any of its blocks
    ImageLoss lostLast = ImageLoss::kNone; ///< with its last block or after it
};

/// The image with its digests: each is made on a thread of its own beside the others, and a block counts as stored when
/// every one has it.
class DigestingSink {
  public:
    DigestingSink(ForensicImage& image, BlockPipeline& blocks) : md5_(image.file, *image.hashers.md5, blocks) {
        if (image.hashers.sha256) {
            sha256_.emplace(md5_, *image.hashers.sha256, blocks);
        }
    }

    [[nodiscard]] BlockSink& whole() { return sha256_ ? *sha256_ : md5_; }

    /// False once a block could not be added to this digest.
    [[nodiscard]] bool hashedAll(DigestKind kind) const {
        return kind == DigestKind::kMd5 ? md5_.hashedAll() : !sha256_ || sha256_->hashedAll();
    }

  private:
    HashingSink md5_;
    std::optional<HashingSink> sha256_; // around the other: what it is given goes through both
};

Stopper stopperOfImage(const ForensicImage& image, RunEnd end, const DriveRecord& source) {
    switch (image.lost) {
    case ImageLoss::kNotWritten:
    case ImageLoss::kNotOnMedium:
        return Stopper::kFailedWrite;
    case ImageLoss::kNotHashed:
        return Stopper::kFailedHash;
    default:
        return stopperOf(end, source);
    }
}

// The lowered flag ends the job, once the block's other steps have followed all the same.
void stopWithExplosion(const CopyJob& job) {
    job.claim.lower();
    job.display.startExplosionTimer(kExplosionMilliseconds);
}

void stopUnwritten(const CopyJob& job, ForensicImage& image, ImageLoss loss) {
    image.lost = loss;
    image.file.close();
    job.display.setStatus("Could not WRITE to DESTINATION image");
    stopWithExplosion(job);
}

void stopUnhashed(const CopyJob& job, ForensicImage& image, DigestKind kind, JobAccount& account) {
    account.losses.notHashed = true;
    image.lost = image.lost == ImageLoss::kNone ? ImageLoss::kNotHashed : image.lost;
    image.file.close();
    // A box waits for its answer as long as it likes: the image's files say before how it ends.
    markDoubtful(image.file, account);
    account.ending = kNotCompleted;
    account.stoppedBy = stopperOfImage(image, RunEnd::kGaveUp, *job.order.source);
    endAccount(job, account);
    showHashError(job, kind, HashTrouble::kNoData);
    stopWithExplosion(job);
}

// A SHA-256 that fails ends the image as an MD5 does: who has asked for it wants no image without.
void storeAndHash(const CopyJob& job, ForensicImage& image, DigestingSink& sink, const Block& block,
                  JobAccount& account) {
    if (!storeBlock(job, sink.whole(), block, account)) {
        stopUnwritten(job, image, ImageLoss::kNotWritten);
    }
    for (const DigestKind kind : {DigestKind::kMd5, DigestKind::kSha256}) {
        if (!sink.hashedAll(kind)) {
            stopUnhashed(job, image, kind, account);
        }
    }
}

RunEnd fillImage(const CopyJob& job, DriveRecord& source, BlockPipeline& blocks, CopyProgress& progress,
                 ForensicImage& image, JobAccount& account) {
    DigestingSink sink(image, blocks);
    const BlockOrder& order = blocks.order();
    const auto copyBlock = [&](const Block& block) {
        settleBlock(job, source, block, account);
        storeAndHash(job, image, sink, block, account);
        image.lostLast = block.extent == order.extent(order.count() - 1) ? image.lost : ImageLoss::kNone;
        return true;
    };
    const BadBlockRule rule{.source = &source, .explosionMilliseconds = kExplosionMilliseconds};
    const RunEnd end = moveBlocks(job, blocks, progress, rule, copyBlock, [&] { ++job.track.animationBlocks; });
    if (image.lost == ImageLoss::kNone && !flushStored(sink.whole(), end, account)) {
        stopUnwritten(job, image, ImageLoss::kNotOnMedium);
        image.lostLast = image.lost;
    }
    markDoubtful(image.file, account);
    // An image without one of its blocks is not complete, be it the remainder alone.
    return image.lost == ImageLoss::kNone ? end : RunEnd::kGaveUp;
}

std::string_view imagingEnding(RunEnd end, const JobLosses& losses) {
    return end == RunEnd::kWhole && losses.notHashed ? "not hashed" : endingInWords(end);
}

std::string imagingOutcome(RunEnd end, const JobLosses& losses) {
    return end == RunEnd::kWhole && losses.notHashed ? driveOutcomeText("not hashed", losses)
                                                     : runOutcomeText(end, losses);
}

std::string lossInWords(ImageLoss loss, const std::string& path) {
    const std::string image = "[" + path + "]";
    const std::string consequence = ". The image is not whole, and it has no hash file. Make it anew";
    switch (loss) {
    case ImageLoss::kNotWritten:
        return "The last block of " + image + " could not be written" + consequence;
    case ImageLoss::kNotHashed:
        return "The last block of " + image + " could not be hashed" + consequence;
    case ImageLoss::kNotOnMedium:
        return "Not everything of " + image + " could be brought onto the medium" + consequence;
    case ImageLoss::kNoSha256:
        return "The SHA-256 HASH of " + image +
               " could not be read. The image has no hash files, and it cannot be verified. Make it anew";
    default:
        return "The HASH of " + image +
               " could not be read. The image has no hash file, and it cannot be verified. Make it anew";
    }
}

/// A failure at the very end shows in nothing but a text that is gone a moment later.
void nameLoss(const CopyJob& job, const ImageLoss loss, const std::string& path) {
    const char* const caption =
        loss == ImageLoss::kNoSha256 ? "****** HASH ERROR ******" : "***** IMAGE NOT COMPLETE *****";
    job.system.stop(caption, lossInWords(loss, path).c_str());
}

void writeOrLog(const CopyJob& job, const std::string& name, const std::string& text) {
    if (!job.system.writeTextFile(name, text)) {
        job.system.logError("Could not CREATE HASH file for [" + name + "]. Exiting.");
    }
}

/// Which of the digests that were ordered there is none of.
ImageLoss missingDigest(const CopyJob& job, const Digests& digests) {
    if (!digests.md5) {
        return ImageLoss::kNoDigest;
    }
    return job.order.alsoSha256 && !digests.sha256 ? ImageLoss::kNoSha256 : ImageLoss::kNone;
}

void writeHashFiles(const CopyJob& job, const DriveRecord& source, const ImageFileName& name, const Digests& digests) {
    if (digests.md5) {
        WriteHashFile(job, source, *digests.md5, name.number);
    }
    if (digests.sha256) {
        writeSha256File(job, name.path, *digests.sha256);
    }
}

/// What an imaging pass leaves for the verification.
struct ImagedDrive {
    std::string path;
    bool mayBeVerified = false;                ///< every full block was moved, and there are its digests
    ImageLoss lostAtItsEnd = ImageLoss::kNone; ///< with the last block or after it
    Digests digests;
    ImagingAccount account;
};

/// The imaging pass from the prepared image on. None when the job has to end at once.
std::optional<ImagedDrive> imageDrive(const CopyJob& job, DriveRecord& source, const ImageFileName& name,
                                      ForensicImage image, JobAccount& account) {
    DriveSource driveSource(job.drives, source);
    BlockPipeline blocks(driveSource, BlockOrder::forward(driveBytes(source), job.blockSize));
    if (!blocks.hasBuffers()) {
        reportNoMemory(job);
        account.stoppedBy = Stopper::kNoMemory;
        return std::nullopt;
    }
    CopyProgress progress(job, blocks.order(),
                          {.track = kImageTrack,
                           .label = " Image Status",
                           .activity = "Imaging",
                           .drives = {&source},
                           .losses = &account.losses});
    job.display.setStatus(" Status: Idle");
    std::optional<Hashers> hashers = makeHashersOrTell(job, {.md5 = true, .sha256 = job.order.alsoSha256}, [&] {
        account.stoppedBy = Stopper::kFailedHash;
        endAccount(job, account);
    });
    if (!hashers) {
        return std::nullopt;
    }
    image.hashers = std::move(*hashers);
    job.display.repaint();
    const bool wanted = job.claim.raise();
    beginAnimation(job.track, blocks.order().fullBlocks());

    JobLosses& losses = account.losses;
    RunEnd end = RunEnd::kLeftEarly;
    if (wanted) {
        showUnderWay(job, account);
        end = fillImage(job, source, blocks, progress, image, account);
    }
    const Digests digests = digestsOf(image.hashers);
    const ImageLoss noDigest = missingDigest(job, digests);
    losses.notHashed = losses.notHashed || noDigest != ImageLoss::kNone;
    const bool complete = noDigest == ImageLoss::kNone && movedFullBlocks(end);
    if (complete) {
        account.digest = digests.md5;
        account.sha256 = digests.sha256;
    }
    concludeRun(job, account, imagingEnding(end, losses), stopperOfImage(image, end, source));
    if (complete) {
        showSuccess(job, " Image SUCCESSFULLY Completed", kTrackFinishX);
    } else {
        showFailure(job, " Image Terminated -- Not Completed", kExplosionMilliseconds);
    }
    if (complete) {
        writeHashFiles(job, source, name, digests);
    }
    progress.setDriveStatus(imagingOutcome(end, losses));
    job.display.repaintTrack(kImageTrack);
    image.file.close();
    job.claim.lower();
    return ImagedDrive{.path = name.path,
                       .mayBeVerified = complete,
                       .lostAtItsEnd = noDigest != ImageLoss::kNone && movedFullBlocks(end) ? noDigest : image.lostLast,
                       .digests = digests,
                       .account = {.whole = end == RunEnd::kWhole, .losses = losses}};
}

/// The whole imaging pass. `imaged` is left as it is when it ended early.
std::uint32_t imageForensically(const CopyJob& job, JobAccount& account, std::optional<ImagedDrive>& imaged) {
    DriveRecord& source = *job.order.source;
    clearTrack(job.track, kTrackStartX, kImageCarY);
    source.badReadCount = 0;
    if (!isSourceUnchanged(job)) {
        return endRefused(job);
    }

    job.display.setImagePlace(job.order.path);
    NewImage created = createNumberedImage(job, source);
    ForensicImage image{.file = ImageSink(std::move(created.file)), .hashers = {}};
    if (!image.file.isOpen()) {
        job.display.setStatus("Could not CREATE DESTINATION image");
        showNotStarted(job, source);
        return 0;
    }
    job.display.setImagePlace(created.name.path);
    expectBytes(account, driveBytes(source), driveBytes(source));
    beginImageEvidence(job, account, created.name.path, created.name.number);
    imaged = imageDrive(job, source, created.name, std::move(image), account);
    if (!imaged) {
        showNotStarted(job, source);
        return 0;
    }
    return 1;
}

} // namespace

std::uint32_t runForensicImage(const CopyJob& job) {
    std::optional<ImagedDrive> imaged;
    JobAccount account;
    // The row of its end is written before anybody has to answer.
    const std::uint32_t exitCode = runAccounted(job, account, [&] { return imageForensically(job, account, imaged); });
    if (!imaged) {
        return exitCode;
    }
    if (imaged->lostAtItsEnd != ImageLoss::kNone) {
        nameLoss(job, imaged->lostAtItsEnd, imaged->path);
    }
    if (imaged->mayBeVerified &&
        job.system.ask("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?")) {
        beginVerification(job, account);
        imaged->account.tellOutcome = [&](std::string_view outcome) { endVerification(job, account, outcome); };
        VerifyImageHash(job, imaged->path, imaged->digests, imaged->account);
    }
    return exitCode;
}

void WriteHashFile(const CopyJob& job, const DriveRecord& source, const Md5Digest& digest, std::int32_t number) {
    const std::string name = hashFileName(job.order.path, source.model.view(), number);
    writeOrLog(job, name, hashFileText(source, digest, job.system.now()));
}

void writeSha256File(const CopyJob& job, const std::string& imagePath, const Sha256Digest& digest) {
    writeOrLog(job, sha256FileName(imagePath), sha256FileText(fileNameOf(imagePath), digest));
}

} // namespace torvane
