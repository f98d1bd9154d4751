#pragma once

#include "copy/engine/block_pipeline.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/image_names.h"
#include "tests/unit/copy_model/world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

namespace torvane::testing {

/// Lets a scripted world stand in for the drives, the system, the dialog and the user, and watches the job's reading
/// ahead.
class ScriptedSystem : public DriveIo, public CopySystem, public JobDisplay {
  public:
    explicit ScriptedSystem(World& world) : world_(world) {
        world_.askToStop = [this] { jobs_.askToStop(); };
    }

    std::uint32_t run() {
        const ScriptedJob job = world_.script.job;
        const bool makesImage = job == ScriptedJob::kImageToFile || job == ScriptedJob::kForensicImage;
        const bool readsImage = job == ScriptedJob::kImageToDrive || job == ScriptedJob::kVerifyImage;
        const CopyOrder order{.kind = kindOf(job),
                              .source = readsImage ? nullptr : &world_.source,
                              .destination =
                                  makesImage || job == ScriptedJob::kVerifyImage ? nullptr : &world_.destination,
                              .path = readsImage ? World::kSourceImage : World::kFolder,
                              .alsoSha256 = world_.script.alsoSha256,
                              .known = world_.knownDigests(),
                              .caseInformation = {.caseNumber = "", .examiner = "E. Xaminer", .note = "two\nlines"},
                              .verifyAfterwards = world_.script.verifyAfterwards};
        std::optional<JobClaim> claim = jobs_.begin(jobKindOf(order.kind));
        const std::uint32_t exitCode = runScripted({.order = order,
                                                    .claim = claim.value(),
                                                    .track = track_,
                                                    .drives = *this,
                                                    .system = *this,
                                                    .display = *this,
                                                    .keptImages = keptImages_,
                                                    .blockSize = world_.script.blockSize});
        claim.reset();
        copyFlags();
        if (world_.flags.animationBlocks >= 0 && forensicBegun_) {
            for (const auto& point : track_.chasePoints) {
                world_.chasePoints.push_back(point);
            }
        }
        return exitCode;
    }

    // --- DriveIo: the source is read, the destination written, and at last both are read ---

    bool canReach(const DriveRecord& drive, std::uint64_t offset) override {
        if (&drive == &world_.source) {
            expectAllowedFetch();
            if (world_.nextReadIsNotSought()) {
                lastFetchWhole_ = world_.readDrive(offset, {}).sought;
                return false;
            }
        } else if (comparing_) {
            return !world_.nextRereadIsNotSought() || world_.rereadDrive(offset, {}).sought;
        } else if (world_.nextWriteIsNotSought()) {
            return world_.writeDrive(offset, {}).sought;
        }
        return true;
    }

    TransferOutcome read(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) override {
        if (&drive == &world_.destination) {
            EXPECT_TRUE(comparing_);
            pause(world_.script.slowWrites);
            return outcomeOf(world_.rereadDrive(offset, bytes), bytes.size());
        }
        EXPECT_EQ(&drive, &world_.source);
        fetching_ = true;
        const TransferOutcome outcome = outcomeOf(world_.readDrive(offset, bytes), bytes.size());
        pause(world_.script.slowReads);
        fetching_ = false;
        lastFetchWhole_ = outcome == TransferOutcome::kWhole;
        return outcome;
    }

    TransferOutcome write(const DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) override {
        EXPECT_EQ(&drive, &world_.destination);
        pause(world_.script.slowWrites);
        return outcomeOf(world_.writeDrive(offset, bytes), bytes.size());
    }

    TransferOutcome flush(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        pause(world_.script.slowFlushes);
        return outcomeOf(world_.flush(World::kDestination), 0);
    }

    // --- CopySystem ---

    bool isStillTheSource(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.source);
        copyFlags();
        return world_.isStillTheSource();
    }
    bool isStillTheDestination(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        copyFlags();
        return world_.isStillTheDestination();
    }
    void rememberPartitionTable(DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        copyFlags();
        world_.rememberDestination();
    }
    std::optional<std::string> readTableAnew(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        copyFlags();
        return world_.readTableAnew();
    }
    DiskChange cleanDisk(DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        copyFlags();
        return world_.clean();
    }
    std::vector<std::string> volumesOn(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.destination);
        copyFlags();
        return world_.mountedVolumes();
    }
    std::optional<bool> isReadOnly(const DriveRecord& drive) override {
        EXPECT_EQ(&drive, &world_.source);
        return world_.isSourceReadOnly();
    }
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override {
        see("drive " + std::string(drive.model.view()) + " [" + text + "]");
    }

    ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) override {
        const std::int32_t number = world_.nextNumber();
        return {imageFileName(folder, source.model.view(), number), number};
    }
    bool fileExists(const std::string& path) override { return world_.exists(path); }
    std::unique_ptr<ImageFile> openImage(const std::string& path, ImageUse use) override {
        std::optional<World::OpenFile> opened =
            use == ImageUse::kNew ? world_.createImage(path) : world_.openImage(path, use != ImageUse::kSource);
        return opened ? std::make_unique<File>(world_, std::move(*opened)) : nullptr;
    }
    bool writeTextFile(const std::string& path, std::string_view text) override {
        return world_.writeHashFile(path, std::string(text));
    }

    bool saveText(const std::string& path, std::string_view text, TextUse use) override {
        return world_.saveEvidence(path, std::string(text), use == TextUse::kReplaced);
    }

    std::unique_ptr<BlockHasher> makeHasher(DigestKind kind, HasherFailure& failure) override {
        const bool md5 = kind == DigestKind::kMd5;
        switch (md5 ? world_.beginHashing() : world_.beginSha256()) {
        case World::HasherTrouble::kNoProvider:
            failure = HasherFailure::kNoProvider;
            return nullptr;
        case World::HasherTrouble::kNoHash:
            failure = HasherFailure::kNoHash;
            return nullptr;
        case World::HasherTrouble::kNone:
            // The job goes no further than its last hasher.
            forensicBegun_ = forensicBegun_ ||
                             (world_.script.job == ScriptedJob::kForensicImage && (!md5 || !world_.script.alsoSha256));
            return std::make_unique<Hasher>(world_, kind);
        }
        return nullptr;
    }

    std::int64_t tick() override { return world_.tick(); }
    LocalMoment now() override { return World::now(); }
    MachineNames machineNames() override { return {.machine = "BENCH", .user = "tester"}; }

    void logError(const std::string& text) override { see("log ERROR " + text); }
    void logJob(const std::string& text) override { see("log JOB " + text); }
    void print(const std::string& line) override { see("print " + line); }
    void stop(const char* caption, const char* text) override { see(box("stop", caption, text)); }
    void inform(const char* caption, const char* text) override { see(box("inform", caption, text)); }
    bool ask(const char* caption, const char* text) override {
        see(box("ask", caption, text));
        return world_.script.yes;
    }
    bool askDefaultNo(const char* caption, const char* text) override {
        see(box("ask default no", caption, text));
        return world_.script.yes;
    }

    // --- JobDisplay ---

    void setStatus(std::string_view text) override {
        if (text.find("Terminated") != std::string_view::npos || text.find("Completed") != std::string_view::npos) {
            EXPECT_FALSE(fetching_) << "the end is shown while a read is in flight";
        }
        comparing_ = comparing_ || text == " Beginning Verification";
        see("status [" + std::string(text) + "]");
    }
    void setLosses(std::string_view text, bool bad) override {
        see((bad ? "bad losses [" : "losses [") + std::string(text) + "]");
    }
    void showRun(const RunFigures& run) override {
        see("run " + std::to_string(run.done) + " of " + std::to_string(run.total) + ", " +
            std::to_string(run.losses.unreadableBlocks) + " unreadable, " + std::to_string(run.losses.failedWrites) +
            " not written");
    }
    void endRun() override { see("run ends"); }
    void setImagePlace(std::string_view path) override { see("image into [" + std::string(path) + "]"); }
    void callUser(bool good) override { see(good ? "calls: good" : "calls: bad"); }
    void showDigests(const Digests& known, const Digests& made) override {
        copyFlags();
        world_.seeDigests(known, made);
    }
    void showRescue(const RescueShown&) override { see("rescue"); }
    void repaint() override { see("repaint"); }
    void repaintTrack(const TrackArea& area) override {
        see("repaint " + std::to_string(area.left) + "," + std::to_string(area.top) + "," + std::to_string(area.right) +
            "," + std::to_string(area.bottom));
    }
    void startExplosionTimer(int milliseconds) override { see("timer " + std::to_string(milliseconds)); }

  private:
    class File : public ImageFile {
      public:
        File(World& world, World::OpenFile file) : world_(world), file_(std::move(file)) {}
        ~File() override { world_.close(file_); }
        TransferOutcome read(std::span<std::byte> bytes) override {
            pause(world_.script.slowReads);
            return outcomeOf(world_.readFile(file_, bytes), bytes.size());
        }
        TransferOutcome write(std::span<const std::byte> bytes) override {
            pause(world_.script.slowWrites);
            return outcomeOf(world_.writeFile(file_, bytes), bytes.size());
        }
        TransferOutcome flush() override {
            pause(world_.script.slowFlushes);
            return outcomeOf(world_.flush(file_.path), 0);
        }
        bool rewind() override { return !world_.script.imageCannotBeRewound; }
        std::uint64_t size() override { return world_.files[file_.path].size(); }

      private:
        World& world_;
        World::OpenFile file_;
    };

    class Hasher : public BlockHasher {
      public:
        Hasher(World& world, DigestKind kind) : world_(world), kind_(kind) {}
        bool add(std::span<const std::byte> bytes) override {
            pause(world_.script.slowHashes);
            return kind_ == DigestKind::kMd5 ? world_.hash(digest_, bytes) : world_.hashSha256(digest_, bytes);
        }
        bool finish(std::span<std::uint8_t> digest) override {
            if (kind_ == DigestKind::kMd5) {
                std::ranges::copy(digest_.value(), digest.begin());
                return !world_.digestFails();
            }
            std::ranges::copy(digest_.stretched(), digest.begin());
            return !world_.sha256DigestFails();
        }

      private:
        World& world_;
        DigestKind kind_;
        ScriptedDigest digest_;
    };

    static TransferOutcome outcomeOf(const World::Transfer& done, std::size_t wanted) {
        if (done.ok && done.count == wanted) {
            return TransferOutcome::kWhole;
        }
        if (done.refused) {
            return TransferOutcome::kRefused;
        }
        return done.gone ? TransferOutcome::kGone : TransferOutcome::kFailed;
    }

    static CopyKind kindOf(ScriptedJob job) {
        switch (job) {
        case ScriptedJob::kForwardClone:
            return CopyKind::kForwardClone;
        case ScriptedJob::kReverseClone:
            return CopyKind::kReverseClone;
        case ScriptedJob::kImageToFile:
            return CopyKind::kImageToFile;
        case ScriptedJob::kForensicImage:
            return CopyKind::kForensicImage;
        case ScriptedJob::kImageToDrive:
            return CopyKind::kImageToDrive;
        case ScriptedJob::kVerifyImage:
            break;
        }
        return CopyKind::kVerifyImage;
    }

    static std::uint32_t runScripted(const CopyJob& job) {
        switch (job.order.kind) {
        case CopyKind::kForwardClone:
            return runForwardClone(job);
        case CopyKind::kReverseClone:
            return runReverseClone(job);
        case CopyKind::kImageToFile:
            return runImageToFile(job);
        case CopyKind::kForensicImage:
            return runForensicImage(job);
        case CopyKind::kImageToDrive:
            return runImageToDrive(job);
        case CopyKind::kVerifyImage:
            return runVerifyImage(job);
        case CopyKind::kRescue:
            break; // judged by a model of its own
        }
        return 98;
    }

    // Blocks 0 to n-1 have been dealt with once write n-1 has begun, so block n is the one in the job's hands.
    void expectAllowedFetch() {
        if (comparing_) {
            return; // nothing is lost by reading, and nothing follows from it
        }
        const std::uint64_t number = world_.driveReads;
        const std::uint64_t written = world_.writesBegun;
        EXPECT_LE(number, written + BlockPipeline::kBlocksAhead) << "too far ahead";
        if (!lastFetchWhole_) {
            EXPECT_LE(number, written) << "read on before the job had dealt with a failed read";
        }
    }

    void see(const std::string& what) {
        copyFlags();
        world_.see(what);
    }

    void copyFlags() {
        world_.flags.running = jobs_.active() ? 1 : 0;
        world_.flags.failed = track_.failed.load();
        world_.flags.explosionFrame = track_.explosionFrame.load();
        world_.flags.succeeded = track_.succeeded.load();
        world_.flags.carX = track_.carX.load();
        world_.flags.carY = track_.carY.load();
        world_.flags.animationBlocks = track_.animationBlocks.load();
    }

    static std::string box(const char* kind, const char* caption, const char* text) {
        return std::string(kind) + " [" + caption + "] [" + text + "]";
    }

    static void pause(bool slow) {
        if (slow) {
            std::this_thread::sleep_for(std::chrono::microseconds(20));
        }
    }

    World& world_;
    Jobs jobs_;
    RaceTrackState track_;
    OpenImages keptImages_;
    bool lastFetchWhole_ = true;
    std::atomic<bool> fetching_{false};
    std::atomic<bool> comparing_{false}; ///< or an image is verified
    bool forensicBegun_ = false;
};

} // namespace torvane::testing
