#pragma once

#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/image_names.h"
#include "tests/unit/copy_model/world.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace torvane::testing {

/// Lets a scripted world stand in for the system, the dialog and the user, and watches the job's reading ahead.
class ScriptedSystem : public CopySystem, public JobDisplay {
  public:
    explicit ScriptedSystem(World& world) : world_(world) {
        state.source = &world.source;
        state.imageSource = &world.source;
        state.destination = &world.destination;
    }

    std::uint32_t run() {
        const CopyJob job{.state = state,
                          .running = world_.words.running,
                          .system = *this,
                          .display = *this,
                          .destinationPath =
                              world_.script.job == ScriptedJob::kImageToDrive ? World::kSourceImage : World::kFolder,
                          .blockSize = world_.script.blockSize};
        const std::uint32_t exitCode = runScripted(job);
        copyWords();
        if (world_.words.animationBlocks >= 0 && forensicBegun_) {
            for (const auto& point : state.chasePoints) {
                world_.chasePoints.push_back(point);
            }
        }
        return exitCode;
    }

    CopyJobState state;

    // --- CopySystem ---

    FetchOutcome fetch(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) override {
        EXPECT_EQ(&drive, &world_.source);
        expectAllowedFetch();
        fetching_ = true;
        const World::Transfer done = world_.readDrive(offset, bytes);
        pause(world_.script.slowReads);
        fetching_ = false;
        const bool whole = done.sought && done.ok && done.count == bytes.size();
        lastFetchWhole_ = whole;
        if (whole) {
            return FetchOutcome::kWhole;
        }
        return done.sought ? FetchOutcome::kReadFailed : FetchOutcome::kSeekFailed;
    }

    bool write(DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) override {
        EXPECT_EQ(&drive, &world_.destination);
        pause(world_.script.slowWrites);
        const World::Transfer done = world_.writeDrive(offset, bytes);
        const bool whole = done.sought && done.ok && done.count == bytes.size();
        if (done.sought && !whole) {
            ++drive.writeErrorCount;
        }
        return whole;
    }

    void cleanDestination() override { see("clean"); }

    ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) override {
        const std::int32_t number = world_.nextNumber();
        return {imageFileName(folder, source.model.view(), number), number};
    }
    std::unique_ptr<ImageFile> createImage(const std::string& path) override { return file(world_.createImage(path)); }
    std::unique_ptr<ImageFile> reopenImage(const std::string& path) override { return file(world_.openImage(path)); }
    std::unique_ptr<ImageFile> openImage(const std::string& path) override { return file(world_.openImage(path)); }
    bool writeTextFile(const std::string& path, std::string_view text) override {
        return world_.writeHashFile(path, std::string(text));
    }

    std::unique_ptr<BlockHasher> makeHasher(HasherFailure& failure) override {
        switch (world_.beginHashing()) {
        case World::HasherTrouble::kNoProvider:
            failure = HasherFailure::kNoProvider;
            return nullptr;
        case World::HasherTrouble::kNoHash:
            failure = HasherFailure::kNoHash;
            return nullptr;
        case World::HasherTrouble::kNone:
            forensicBegun_ = true;
            return std::make_unique<Hasher>(world_);
        }
        return nullptr;
    }

    std::int64_t tick() override { return world_.tick(); }
    LocalMoment now() override { return World::now(); }

    void log(const char* category, const std::string& text) override {
        see("log " + std::string(category) + " " + text);
    }
    void print(const std::string& line) override { see("print " + line); }
    void stop(const char* caption, const char* text) override { see(box("stop", caption, text)); }
    void inform(const char* caption, const char* text) override { see(box("inform", caption, text)); }
    bool ask(const char* caption, const char* text) override {
        see(box("ask", caption, text));
        return world_.script.yes;
    }
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override {
        see("drive " + std::string(drive.model.view()) + " [" + text + "]");
    }

    // --- JobDisplay ---

    void setStatus(std::string_view text) override {
        if (text.find("Terminated") != std::string_view::npos || text.find("Completed") != std::string_view::npos) {
            EXPECT_FALSE(fetching_) << "the end is shown while a read is in flight";
        }
        see("status [" + std::string(text) + "]");
    }
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
        bool read(std::span<std::byte> bytes) override {
            pause(world_.script.slowReads);
            const World::Transfer done = world_.readFile(file_, bytes);
            return done.ok && done.count == bytes.size();
        }
        bool write(std::span<const std::byte> bytes) override {
            pause(world_.script.slowWrites);
            const World::Transfer done = world_.writeFile(file_, bytes);
            return done.ok && done.count == bytes.size();
        }
        bool rewind() override { return !world_.script.imageCannotBeRewound; }
        std::uint64_t size() override { return world_.files[file_.path].size(); }

      private:
        World& world_;
        World::OpenFile file_;
    };

    class Hasher : public BlockHasher {
      public:
        explicit Hasher(World& world) : world_(world) {}
        bool add(std::span<const std::byte> bytes) override {
            pause(world_.script.slowHashes);
            return world_.hash(digest_, bytes);
        }
        std::optional<Md5Digest> digest() override {
            return world_.digestFails() ? std::nullopt : std::optional(digest_.value());
        }

      private:
        World& world_;
        ScriptedDigest digest_;
    };

    std::unique_ptr<ImageFile> file(std::optional<World::OpenFile> opened) {
        return opened ? std::make_unique<File>(world_, std::move(*opened)) : nullptr;
    }

    std::uint32_t runScripted(const CopyJob& job) const {
        switch (world_.script.job) {
        case ScriptedJob::kForwardClone:
            return runForwardClone(job);
        case ScriptedJob::kReverseClone:
            return runReverseClone(job);
        case ScriptedJob::kImageToFile:
            return runImageToFile(job);
        case ScriptedJob::kForensicImage:
            return runForensicImage(job);
        case ScriptedJob::kImageToDrive:
            return runImageToDrive(job);
        }
        return 98;
    }

    // Blocks 0 to n-1 have been dealt with once write n-1 has begun, so block n is the one in the job's hands.
    void expectAllowedFetch() {
        const std::uint64_t number = world_.driveReads;
        const std::uint64_t written = world_.writesBegun;
        EXPECT_LE(number, written + 2) << "too far ahead";
        if (!lastFetchWhole_) {
            EXPECT_LE(number, written) << "read on before the job had dealt with a failed read";
        }
    }

    void see(const std::string& what) {
        copyWords();
        world_.see(what);
    }

    void copyWords() {
        world_.words.failed = state.failed.load();
        world_.words.explosionFrame = state.explosionFrame.load();
        world_.words.succeeded = state.succeeded.load();
        world_.words.carX = state.carX.load();
        world_.words.carY = state.carY.load();
        world_.words.animationBlocks = state.animationBlocks.load();
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
    bool lastFetchWhole_ = true;
    std::atomic<bool> fetching_{false};
    bool forensicBegun_ = false;
};

} // namespace torvane::testing
