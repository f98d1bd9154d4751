#pragma once

#include "base/program_identity.h"
#include "tests/unit/copy_model/world.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace torvane::testing {

/// The five jobs as one thread with one buffer would do them, step by step: what every observer must be shown. It
/// shares nothing with the jobs under test but the world that it runs in.
class SequentialModel {
  public:
    explicit SequentialModel(World& world) : world_(world), flags_(world.flags), block_(world.script.blockSize) {}

    std::uint32_t run() {
        if (world_.script.job == ScriptedJob::kVerifyImage) {
            return verifyImage();
        }
        world_.see("losses []");
        jobRow(subject(destinationText()) + " begins");
        const std::uint32_t exitCode = runJob();
        if (!ended_) {
            endFiles("nobody");
        }
        jobRow(subject(path_.empty() ? destinationText() : "into [" + path_ + "]") + ": " + ending_ +
               (ending_ == "not started" ? "" : ". " + losses()) +
               (compared_ ? ". Compared with its source: " + comparison() : "") + digestText_ + mapText_);
        if (ending_ != "not started") {
            callUser(ending_ == "completed" && losses() == "Nothing was lost" && (!compared_ || equal()));
        }
        if (mountedMeanwhile_) {
            tellMount();
        }
        if (compared_) {
            tellComparison();
        }
        afterwards();
        return exitCode;
    }

  private:
    std::uint32_t runJob() {
        switch (world_.script.job) {
        case ScriptedJob::kForwardClone:
            return forwardClone();
        case ScriptedJob::kReverseClone:
            return reverseClone();
        case ScriptedJob::kImageToFile:
            return imageToFile();
        case ScriptedJob::kForensicImage:
            return forensicImage();
        case ScriptedJob::kImageToDrive:
            return imageToDrive();
        case ScriptedJob::kVerifyImage:
            break;
        }
        return 99;
    }

    // --- the log file ---

    void jobRow(const std::string& row) { world_.see("log JOB " + row); }

    [[nodiscard]] std::string destinationText() const {
        const ScriptedJob job = world_.script.job;
        return job == ScriptedJob::kImageToFile || job == ScriptedJob::kForensicImage
                   ? std::string("into [") + World::kFolder + "]"
                   : "onto drive 12 [Destination] [D 9]";
    }
    [[nodiscard]] std::string subject(const std::string& to) const {
        static constexpr std::array<const char*, 5> kTitles{"Clone", "Reverse clone", "Image", "Forensic image",
                                                            "Image to drive"};
        const std::string from = world_.script.job == ScriptedJob::kImageToDrive
                                     ? std::string("[") + World::kSourceImage + "]"
                                     : "drive 3 [Model 100%s] [S/N 7]";
        return kTitles[static_cast<std::size_t>(world_.script.job)] + (" of " + from) + " " + to;
    }

    static std::string text(const char* format, auto... arguments) {
        char buffer[2048];
        std::snprintf(buffer, sizeof buffer, format, arguments...);
        return buffer;
    }

    // --- what the copy proves ---

    /// Nothing of so many bytes of the source is in the copy, which has room for the first `room` of them.
    void expect(std::uint64_t bytes, std::uint64_t room) {
        notCopied_ = bytes;
        copied_.assign(bytes, '?');
        read_.assign(bytes, '?');
        room_ = room;
    }
    static void mark(std::string& places, std::uint64_t from, std::uint64_t to, char status) {
        for (std::uint64_t i = from; i < std::min<std::uint64_t>(to, places.size()); ++i) {
            places[i] = status;
        }
    }
    void doubt() {
        doubtWhatWasStoredBesideAFailure();
        for (const auto& [from, to] : doubtful_) {
            mark(copied_, from, to, '?');
        }
    }

    struct Run {
        std::size_t from;
        std::size_t to;
        char status;
    };
    static std::vector<Run> runsOf(const std::string& places) {
        std::vector<Run> runs;
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (runs.empty() || runs.back().status != places[i]) {
                runs.push_back({i, i, places[i]});
            }
            runs.back().to = i + 1;
        }
        return runs;
    }

    [[nodiscard]] std::string mapFile() const {
        const auto first = [this](char status) { return copied_.find(status); };
        const char next = first('?') != std::string::npos ? '?' : first('*') != std::string::npos ? '*' : '+';
        const std::uint64_t place = next == '+' ? 0 : first(next);
        std::string lines =
            std::string("# Mapfile. Created by Torvane ") + programVersion() + ", build " + programBuild() + "\n# " +
            subject(path_.empty() ? destinationText() : "into [" + path_ + "]") +
            "\n# Start time: 2024-03-01 09:05:07 +00:00\n# Current time: 2024-03-01 09:05:07 "
            "+00:00\n# Ending: " +
            ending_ + (stopper_ == "nobody" ? "" : ", stopped by " + stopper_) +
            "\n# current_pos  current_status  current_pass\n" +
            text("0x%08" PRIX64 "     %c               1\n", place, next) + "#      pos        size  status\n";
        for (const Run& run : runsOf(copied_)) {
            lines += text("0x%08zX  0x%08zX  %c\n", run.from, run.to - run.from, run.status);
        }
        return lines;
    }

    [[nodiscard]] std::string record() const {
        const DriveRecord& source = world_.source;
        const auto sector = static_cast<std::size_t>(source.bytesPerSector);
        std::string lines = std::string("Program: Torvane\r\nVersion: ") + programVersion() +
                            "\r\nBuild: " + programBuild() + "\r\nMachine: BENCH\r\nUser: tester\r\nJob: " +
                            (world_.script.job == ScriptedJob::kImageToFile ? "Image" : "Forensic image") +
                            "\r\nCase number: none\r\nExaminer: E. Xaminer\r\nNote: two lines\r\n"
                            "Drive number: 3\r\nTransport: " +
                            (world_.script.sourceIsImageFile ? "Image file" : "Unknown") +
                            "\r\nModel: Model 100%s\r\nSerial number: S/N 7\r\n"
                            "Serial number told by the device: not told\r\n"
                            "Serial number printed on the device: not told\r\nFirmware: not told\r\n" +
                            text("Size in bytes: %zu\r\nSectors: %zu\r\nSector size in bytes: %zu\r\n", copied_.size(),
                                 copied_.size() / sector, sector) +
                            "Read-only before: no\r\nRead-only after: " +
                            (!ended_          ? "not told"
                             : readOnlyAtEnd_ ? "yes"
                                              : "no");
        lines += "\r\nImage: " + path_ + "\r\nMap: " + path_ + ".map\r\nStart: " + kNow +
                 "\r\nEnd: " + (ended_ ? kNow : "not yet") + "\r\nEnding: " + ending_ + "\r\nLost: " + losses() +
                 "\r\nStopped by: " + stopper_ + "\r\nMD5: " + recordedDigest_ + "\r\nSHA-256: " + recordedSha256_ +
                 "\r\n" +
                 text("Bytes missing from the image: %td\r\n",
                      std::count_if(copied_.begin(), copied_.end(), [](char c) { return c != '+'; }));
        std::vector<Run> bad = runsOf(read_);
        std::erase_if(bad, [](const Run& run) { return run.status != '*'; });
        lines += text("Unreadable ranges: %zu\r\n", bad.size());
        for (std::size_t i = 0; i < bad.size(); ++i) {
            lines += text("Unreadable range %zu: sectors %zu to %zu, offset %zu bytes, length %zu bytes\r\n", i + 1,
                          bad[i].from / sector, (bad[i].to - 1) / sector, bad[i].from, bad[i].to - bad[i].from);
        }
        lines += text("Write failures: %" PRIu64 "\r\n", failedWrites_);
        lines += "Verification: " + verification_ + "\r\n";
        if (verification_ != "not made") {
            lines += std::string("Verification start: ") + kNow +
                     "\r\nVerification end: " + (verification_ == "under way" ? "not yet" : kNow) + "\r\n";
        }
        return lines;
    }

    void save(const std::string& name, const std::string& lines) {
        const bool mine = written_.contains(name);
        if (world_.saveEvidence(name, lines, mine)) {
            written_.insert(name);
        } else if (unwritten_.insert(name).second) {
            log("Could not WRITE [" + name + "]");
        }
    }
    void saveRecord() { save(recordName_, record()); }
    void saveFiles() {
        if (mapName_.empty()) {
            return;
        }
        if (!recordName_.empty()) {
            saveRecord();
        }
        save(mapName_, mapFile());
    }

    /// What lies beside the image; it says "not started" until its first block is about to be moved.
    void beginImageFiles(const std::string& image, int number) {
        path_ = image;
        expect(static_cast<std::uint64_t>(world_.source.sizeBytes),
               static_cast<std::uint64_t>(world_.source.sizeBytes));
        mapName_ = image + ".map";
        recordName_ = text("%s\\ACQUISITION--%s.%d.txt", World::kFolder, world_.source.model.c_str(), number);
        saveFiles();
    }
    void beginDriveFiles(const std::string& stem) {
        mapName_ = stem + ".20240301-090507.map";
        underWay();
        mapText_ = written_.contains(mapName_) ? ". Map [" + mapName_ + "]" : "";
    }
    void underWay() {
        ending_ = "under way";
        saveFiles();
    }
    void endFiles(const std::string& stopper) {
        stopper_ = stopper;
        ended_ = true;
        readOnlyAtEnd_ = world_.isSourceReadOnly();
        doubt();
        saveFiles();
    }
    /// Who has ended a run that did not move everything.
    [[nodiscard]] std::string stopper(bool everything) const {
        return everything                         ? "nobody"
               : world_.source.badReadCount >= 11 ? "the limit of 11 unreadable blocks"
                                                  : "the user";
    }
    void beginVerification() {
        verification_ = "under way";
        saveRecord();
    }
    void endVerification(const std::string& outcome) {
        if (verification_ == "under way") {
            verification_ = outcome;
            saveRecord();
        }
    }

    // --- what is shown ---

    void status(const std::string& line) { world_.see("status [" + line + "]"); }
    void callUser(bool good) { world_.see(good ? "calls: good" : "calls: bad"); }
    void imageInto(const std::string& path) { world_.see("image into [" + path + "]"); }
    void repaint() { world_.see("repaint"); }
    void repaintCloneTrack() { world_.see("repaint 10,160,830,241"); }
    void repaintImageTrack() { world_.see("repaint 10,10,830,91"); }
    void timer(int milliseconds) { world_.see(text("timer %d", milliseconds)); }
    void log(const std::string& row) { world_.see("log ERROR " + row); }
    void stopBox(const std::string& caption, const std::string& line) {
        world_.see("stop [" + caption + "] [" + line + "]");
    }
    void informBox(const std::string& caption, const std::string& line) {
        world_.see("inform [" + caption + "] [" + line + "]");
    }
    bool askBox(const std::string& caption, const std::string& line) {
        world_.see("ask [" + caption + "] [" + line + "]");
        return world_.script.yes;
    }
    bool askDefaultNoBox(const std::string& caption, const std::string& line) {
        world_.see("ask default no [" + caption + "] [" + line + "]");
        return world_.script.yes;
    }
    void driveStatus(const DriveRecord& drive, const std::string& line) {
        world_.see("drive " + std::string(drive.model.view()) + " [" + line + "]");
    }

    // --- the pieces ---

    /// False, and the flag stays down, when the job was asked to stop before.
    bool raise() {
        flags_.running = world_.stopAsked ? 0 : 1;
        return flags_.running == 1;
    }

    void clearFlags() {
        flags_.failed = 0;
        flags_.explosionFrame = 0;
        flags_.succeeded = 0;
    }

    void split(std::uint64_t bytes) {
        bytes_ = bytes;
        full_ = bytes / block_;
        remainder_ = bytes % block_;
        buffer_.assign(block_, std::byte{0});
    }

    void beginTiming() {
        start_ = world_.tick();
        lastPercent_ = -1;
    }

    /// Whole sectors of both drives, so that every block begins on one; what of it is moved ends with the range.
    void splitRange(std::uint64_t bytes, std::uint64_t sourceSector) {
        const auto unit = [this](std::uint64_t sector) { return block_ % sector == 0 ? sector : 1; };
        const auto up = [](std::uint64_t n, std::uint64_t to) { return n % to == 0 ? n : n - n % to + to; };
        const std::uint64_t from = unit(sourceSector);
        const std::uint64_t onto = unit(static_cast<std::uint64_t>(world_.destination.bytesPerSector));
        rangeEnd_ = bytes;
        readEnd_ = up(bytes, from);
        writeEnd_ = up(bytes, onto);
        odd_ = bytes % onto;
        split(up(bytes, std::max(from, onto))); // powers of two
    }

    bool paddingWanted(const std::string& what) {
        return odd_ == 0 ||
               askBox("***** LAST SECTOR NOT FILLED *****",
                      "The " + what + " is " + std::to_string(odd_) +
                          " bytes longer than whole sectors of the DESTINATION, which have " +
                          std::to_string(world_.destination.bytesPerSector) +
                          " bytes. The last sector will be filled up with zeros. Do you want to continue?");
    }

    std::uint32_t declined(std::initializer_list<const DriveRecord*> drives) {
        for (const DriveRecord* drive : drives) {
            driveStatus(*drive, "Idle");
        }
        return 0;
    }

    bool readBlock(std::uint64_t offset, std::size_t length) {
        const bool whole = readAndMark(offset, length);
        zeroBehindRange(offset, length);
        return whole;
    }

    void zeroBehindRange(std::uint64_t offset, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i) {
            buffer_[i] = offset + i < rangeEnd_ ? buffer_[i] : std::byte{0};
        }
    }

    bool readAndMark(std::uint64_t offset, std::size_t length) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(length, readEnd_ - offset));
        const World::Transfer done = world_.readDrive(offset, std::span(buffer_).first(wanted));
        lastWhole_ = done.sought && done.ok && done.count == wanted;
        mark(read_, offset, offset + length, lastWhole_ ? '+' : '*');
        if (lastWhole_) {
            return true;
        }
        if (!done.sought) {
            ++unreadable_;
            lost_.insert(offset);
            return false;
        }
        ++unreadable_;
        lost_.insert(offset);
        ++world_.source.badReadCount;
        const std::int64_t sector = static_cast<std::int64_t>(offset) / world_.source.bytesPerSector;
        log(text("BAD READ BLOCK AT SECTOR: [%" PRId64 "]", sector));
        for (std::size_t i = 0; i < length / 16; ++i) {
            std::memcpy(buffer_.data() + 16 * i, "KVL<->UNREADABLE", 16);
        }
        return false;
    }

    void writeBlock(std::uint64_t offset, std::size_t blockLength) {
        const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(blockLength, writeEnd_ - offset));
        notCopied_ -= std::min<std::uint64_t>(notCopied_, length);
        const World::Transfer done = world_.writeDrive(offset, std::span(buffer_).first(length));
        const bool whole = done.sought && done.ok && done.count == length;
        if (!whole) {
            world_.destination.writeErrorCount += done.sought ? 1 : 0;
            ++failedWrites_;
        }
        driveUsed_ = true;
        storedAny_ = storedAny_ || whole;
        shutOut_ = shutOut_ || (storedAny_ && done.refused);
        stored(World::kDestination, offset, offset + length, whole, done.gone);
    }

    /// Every fourth block that was stored is followed by a flush. A device that goes takes along what was not flushed.
    void stored(const std::string& where, std::uint64_t from, std::uint64_t to, bool whole, bool gone) {
        gone_ = gone;
        if (gone) {
            doubtful_.insert(doubtful_.end(), cached_.begin(), cached_.end());
            cached_.clear();
        }
        if (whole) {
            mark(copied_, from, std::min(to, room_), lastWhole_ ? '+' : '*');
            cached_.emplace_back(from, to);
        }
        unflushed_ += whole ? 1 : 0;
        if (unflushed_ == 4) {
            flush(where);
        }
        saveFilesMeanwhile();
    }
    /// Every three minutes; what nobody has waited for to be on the medium counts as missing in these.
    void saveFilesMeanwhile() {
        const std::int64_t now = world_.tick();
        savedAt_ = savedAt_ != 0 ? savedAt_ : now;
        if (now - savedAt_ < 180000) {
            return;
        }
        savedAt_ = now;
        const std::string reached = copied_;
        for (const auto* places : {&doubtful_, &flushing_, &cached_}) {
            for (const auto& [from, to] : *places) {
                mark(copied_, from, to, '?');
            }
        }
        saveFiles();
        copied_ = reached;
    }
    void flush(const std::string& where) {
        unflushed_ = 0;
        doubtWhatWasStoredBesideAFailure();
        const World::Transfer done = world_.flush(where);
        goneAtFlush_ = goneAtFlush_ || (flushed_ && done.gone); // of several that fail the first one is told
        flushed_ = done.ok && flushed_;
        if (!done.ok) {
            doubtful_.insert(doubtful_.end(), cached_.begin(), cached_.end());
        }
        lastFlushFailed_ = !done.ok;
        flushing_ = std::exchange(cached_, {});
    }
    /// A flush may still be under way while the next blocks are stored; one that fails may lose these, too.
    void doubtWhatWasStoredBesideAFailure() {
        if (lastFlushFailed_) {
            doubtful_.insert(doubtful_.end(), cached_.begin(), cached_.end());
        }
    }

    /// Flushes the rest. False when a flush has failed, now or before: together they are one failed write.
    bool flushRest(const std::string& where) {
        if (gone_) {
            return true; // its last write has told it
        }
        if (unflushed_ != 0) {
            flush(where);
        }
        failedWrites_ += flushed_ ? 0 : 1;
        return flushed_;
    }
    /// What a job does that was left early: a flush that has failed is told, what is not flushed stays so.
    bool tellFailedFlush() {
        const bool failed = !gone_ && !flushed_;
        failedWrites_ += failed ? 1 : 0;
        return !failed;
    }
    void flushDrive(bool complete) {
        const bool onMedium = complete ? flushRest(World::kDestination) : tellFailedFlush();
        world_.destination.writeErrorCount += onMedium ? 0 : 1;
    }

    std::string remaining(std::int64_t done) {
        std::string out = "00:00:00";
        const std::int64_t elapsed = (world_.tick() - start_) / 1000;
        if (elapsed > 0 && done > 0) {
            const double perBlock = static_cast<double>(elapsed) / static_cast<double>(done);
            const double eta = perBlock * static_cast<double>(static_cast<std::int64_t>(full_) - done);
            const auto hours = static_cast<std::int64_t>(eta / 3600);
            const double rest = eta - static_cast<double>(hours * 3600);
            const auto minutes = static_cast<std::int64_t>(rest / 60);
            const std::int64_t seconds = static_cast<std::int64_t>(rest) - minutes * 60;
            out = text("%02" PRId64 ":%02" PRId64 ":%02" PRId64, hours, minutes, seconds);
        }
        return out;
    }

    // --- how far the run is ---

    void beginRun(bool wanted) {
        dealtWith_ = 0;
        if (wanted) {
            showRun();
        }
    }
    void countBytes(std::uint64_t length) {
        dealtWith_ += length;
        showRun();
    }
    void endRun() { world_.see("run ends"); }
    void showRun() {
        world_.see("run " + std::to_string(dealtWith_) + " of " + std::to_string(bytes_) + ", " +
                   std::to_string(unreadable_) + " unreadable, " + std::to_string(failedWrites_) + " not written");
    }

    enum class Track { kClone, kImage };

    void progress(std::uint64_t k, bool forward, Track track, const char* label, const char* activity,
                  std::initializer_list<const DriveRecord*> drives) {
        const std::string left = remaining(static_cast<std::int64_t>(k));
        // A job without a full block has nothing left to do.
        const double fraction = full_ == 0 ? 1.0 : static_cast<double>(k) / static_cast<double>(full_);
        const int percent = static_cast<int>(fraction * 100);
        if (percent != lastPercent_) {
            lastPercent_ = percent;
            const int way = static_cast<int>(750 * fraction);
            flags_.carX = forward ? way + 10 : 760 - way;
            track == Track::kClone ? repaintCloneTrack() : repaintImageTrack();
            for (const DriveRecord* drive : drives) {
                driveStatus(*drive, text("%s %d%%", activity, percent));
            }
        }
        status(text(" %s: %s -- %%%d", label, left.c_str(), percent));
    }

    bool tooManyBadBlocks(int milliseconds) {
        if (world_.source.badReadCount < 11) {
            return false;
        }
        flags_.failed = 1;
        flags_.running = 0;
        timer(milliseconds);
        return true;
    }

    void end(bool complete, const std::string& completed, int carX, const std::string& terminated) {
        if (!complete) {
            flags_.failed = 1;
            status(terminated);
            timer(750);
        } else {
            flags_.carX = carX;
            flags_.succeeded = 1;
            status(completed);
        }
    }

    void endOrRefute(bool complete, const std::string& completed, int carX, const std::string& terminated) {
        if (compared_ && !equal()) {
            end(false, "", 0, " Copy NOT verified");
        } else {
            end(complete, completed, carX, terminated);
        }
    }

    [[nodiscard]] std::string faults(const std::string& before, bool notCopied) const {
        std::string faults = before;
        const auto add = [&](const std::string& clause) { faults += (faults.empty() ? "" : ", ") + clause; };
        const auto addCount = [&](std::uint64_t count, const char* one, const char* many) {
            if (count != 0) {
                add(std::to_string(count) + " " + (count == 1 ? one : many));
            }
        };
        addCount(unreadable_, "unreadable block", "unreadable blocks");
        addCount(failedWrites_, "failed write", "failed writes");
        if (notCopied && notCopied_ != 0) {
            // Scripted drives are small.
            add((notCopied_ < 1024        ? std::to_string(notCopied_) + (notCopied_ == 1 ? " byte" : " bytes")
                 : notCopied_ % 1024 == 0 ? std::to_string(notCopied_ / 1024) + " KB"
                                          : text("%.1f KB", static_cast<double>(notCopied_) / 1024)) +
                " of the source not copied");
        }
        return faults;
    }

    std::string outcome(const std::string& ending) const {
        const bool cutIsBad = ending.empty() && world_.script.job != ScriptedJob::kImageToDrive;
        const std::string all = faults(ending, cutIsBad);
        return all.empty() ? "COMPLETED" : "BAD " + all;
    }

    std::string comparedOutcome(const std::string& ending) const {
        if (!compared_) {
            return outcome(ending);
        }
        return equal() ? outcome(ending) + ", verified"
                       : outcome(ending.empty() ? "not verified" : ending + ", not verified");
    }

    [[nodiscard]] std::string losses() const {
        std::string all = faults("", true);
        if (hashFailed_) {
            all += all.empty() ? "not hashed" : ", not hashed";
        }
        if (mountedMeanwhile_) {
            all += ", a volume was mounted meanwhile"; // behind the writes that it has cost
        }
        return all.empty() ? "Nothing was lost" : all;
    }
    void showLosses(const std::string& ending, const std::string& stopper) {
        ending_ = ending;
        endFiles(stopper);
        world_.see((losses() == "Nothing was lost" ? "losses [" : "bad losses [") + losses() + "]");
    }
    [[nodiscard]] static const char* completed(bool everything) { return everything ? "completed" : "not completed"; }

    /// Every block of the job was moved, the remainder too.
    [[nodiscard]] bool whole(std::uint64_t k) const { return k == full_ && (remainder_ == 0 || remainderMoved_); }

    [[nodiscard]] std::uint64_t sourceUnit() const {
        return world_.script.sourceIsImageFile ? 1 : static_cast<std::uint64_t>(world_.source.bytesPerSector);
    }

    void changedDriveBox(const std::string& role, const std::string& untouched) {
        stopBox("***** DRIVE HAS CHANGED *****", "The " + role +
                                                     " is not the drive that was loaded any more, or it does not "
                                                     "answer. " +
                                                     untouched + ". Load the drives again");
    }

    bool isSourceUnchanged(const std::string& untouched = "Nothing was written") {
        const bool unchanged = world_.isStillTheSource();
        if (!unchanged) {
            changedDriveBox("SOURCE", untouched);
        }
        return unchanged;
    }

    bool isDestinationUnchanged(const std::string& untouched) {
        const bool unchanged = world_.isStillTheDestination();
        if (!unchanged) {
            changedDriveBox("DESTINATION", untouched);
        }
        return unchanged;
    }

    /// Both drives asked, the destination cleaned, and both asked again: what comes before the first block.
    bool destinationReady(bool hasSource) {
        if (hasSource && !isSourceUnchanged()) {
            return false;
        }
        if (!isDestinationUnchanged("Nothing was written")) {
            return false;
        }
        driveStatus(world_.destination, "Cleaning disk");
        status(" Status: Cleaning the destination");
        const DiskChange cleaned = world_.clean();
        status(" Status: Idle");
        if (cleaned == DiskChange::kOtherDrive || cleaned == DiskChange::kDriveLost) {
            changedDriveBox("DESTINATION", cleaned == DiskChange::kOtherDrive
                                               ? "Nothing was changed"
                                               : "What diskpart has changed is not known");
            return false;
        }
        if (cleaned == DiskChange::kMade) {
            return (!hasSource || isSourceUnchanged("The DESTINATION was cleaned before, nothing was written to it")) &&
                   isDestinationUnchanged("It was cleaned before, nothing else was written");
        }
        if (flags_.running == 0) {
            return true; // stopped meanwhile: there is nothing to ask
        }
        if (!isDestinationUnchanged("Nothing was written")) {
            return false;
        }
        static constexpr std::array<const char*, 4> kMounted{"nothing with a letter", "K:", "K:, C:\\mnt\\",
                                                             "K:, C:\\mnt\\, a volume without a letter"};
        const std::string mounted = kMounted[world_.mountedVolumes().size()];
        if (!askDefaultNoBox("***** DESTINATION NOT CLEANED *****",
                             "The DESTINATION could not be cleaned. Still mounted on it: " + mounted +
                                 ". Windows refuses writes inside mounted volumes, so parts of the copy may not "
                                 "arrive. Nothing was written yet. Continue anyway?")) {
            return false;
        }
        return (!hasSource || isSourceUnchanged()) && isDestinationUnchanged("Nothing was written");
    }

    enum class Ready { kYes, kStopped, kRefused };

    Ready prepare(bool hasSource) {
        if (flags_.running == 1 && (full_ > 0 || remainder_ > 0) && !destinationReady(hasSource)) {
            return Ready::kRefused;
        }
        if (flags_.running == 0) {
            return Ready::kStopped;
        }
        unmounted_ = world_.mountedVolumes().empty();
        return Ready::kYes;
    }

    /// However the blocks ended: the destination has a table of the job's making, and the system has to know it. Before
    /// that, because volumes come by it, it is compared.
    void remember(bool wanted, bool moved, bool everything, bool forward) {
        if (!wanted) {
            return;
        }
        mountedMeanwhile_ = unmounted_ && shutOut_ && !world_.mountedVolumes().empty();
        if (moved && world_.script.verifyAfterwards) {
            compared_ = true;
            comparisonEnd_ = "verification stopped";
            if (everything && flags_.running == 1) {
                compare(forward);
            }
        }
        if (driveUsed_ && !gone_ && !goneAtFlush_) {
            if (const std::optional<std::string> failure = world_.readTableAnew()) {
                log(text("Windows could not read the new partition table of disk 012 - Destination D 9, %" PRId64
                         " bytes: %s. Plug the drive in anew",
                         world_.destination.sizeBytes, failure->c_str()));
            }
        }
        world_.rememberDestination();
    }

    /// Both are read again, block by block, in the order of the copy.
    void compare(bool forward) {
        readsFailed_ = world_.source.badReadCount;
        std::optional<World::OpenFile> image;
        if (world_.script.job == ScriptedJob::kImageToDrive) {
            image = world_.openImage(World::kSourceImage, true);
            if (!image) {
                comparisonEnd_ = "verification failed";
                log(text("Could not open [%s] for VERIFICATION", World::kSourceImage));
                return;
            }
        }
        endRun();
        status(" Beginning Verification");
        beginTiming();
        beginRun(true);
        std::uint64_t k = 0;
        bool mayGoOn = true;
        while (k < full_ && mayGoOn) {
            mayGoOn = compareBlock(forward ? k * block_ : bytes_ - (k + 1) * block_, block_, image);
            if (!mayGoOn || flags_.running == 0) {
                break;
            }
            image ? progress(k, true, Track::kClone, "Status", "Verifying", {&world_.destination})
                  : progress(k, forward, Track::kClone, "Status", "Verifying", {&world_.source, &world_.destination});
            ++k;
        }
        bool whole = mayGoOn && k == full_;
        if (mayGoOn && remainder_ > 0 && flags_.running == 1) {
            mayGoOn = compareBlock(forward ? full_ * block_ : 0, remainder_, image);
            whole = whole && mayGoOn;
        } else if (remainder_ > 0) {
            whole = false;
        }
        comparisonEnd_ = whole ? "" : mayGoOn ? "verification stopped" : "verification failed";
        if (image) {
            world_.close(*image);
        }
    }

    bool compareBlock(std::uint64_t offset, std::size_t length, std::optional<World::OpenFile>& image) {
        const bool mayGoOn = compareBytes(offset, length, image);
        if (mayGoOn) {
            countBytes(length);
        }
        return mayGoOn;
    }

    /// False when there is nothing to go on with.
    bool compareBytes(std::uint64_t offset, std::size_t length, std::optional<World::OpenFile>& image) {
        if (lost_.contains(offset)) {
            ++leftOut_;
            return true;
        }
        const auto part = [&](std::uint64_t end) {
            return static_cast<std::size_t>(std::min<std::uint64_t>(length, end - offset));
        };
        Bytes wanted(length);
        const std::size_t reading = image ? part(rangeEnd_) : part(readEnd_);
        const World::Transfer source = image ? world_.readFile(*image, std::span(wanted).first(reading))
                                             : world_.readDrive(offset, std::span(wanted).first(reading));
        Bytes found(part(writeEnd_));
        const World::Transfer destination = world_.rereadDrive(offset, found);
        const bool sourceWhole = source.sought && source.ok && source.count == reading;
        if (!sourceWhole || !destination.sought || !destination.ok || destination.count != found.size()) {
            ++notReadAgain_;
            readsFailed_ += sourceWhole ? 0 : 1;
            return !destination.gone && (image ? sourceWhole : !source.gone && readsFailed_ < 11);
        }
        ++blocksCompared_;
        bool differs = false;
        for (std::size_t i = 0; i < found.size(); ++i) {
            const std::byte expected = offset + i < rangeEnd_ ? wanted[i] : std::byte{0};
            if (!differs && found[i] != expected) {
                differs = true;
                firstDifference_ = std::min(firstDifference_, offset + i);
            }
        }
        differing_ += differs ? 1 : 0;
        return true;
    }

    [[nodiscard]] bool equal() const {
        const bool any = blocksCompared_ != 0 || leftOut_ == 0;
        return comparisonEnd_.empty() && differing_ == 0 && notReadAgain_ == 0 && any;
    }

    [[nodiscard]] std::string comparison() const {
        std::string words = equal() ? "verified" : "";
        const auto add = [&](std::uint64_t count, const char* one, const char* many) {
            if (count != 0) {
                words += (words.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : many);
            }
        };
        add(differing_, "block differs", "blocks differ");
        if (differing_ != 0) {
            words += ", the first at sector " +
                     std::to_string(firstDifference_ / static_cast<std::uint64_t>(world_.destination.bytesPerSector));
        }
        add(notReadAgain_, "block could not be read again", "blocks could not be read again");
        add(leftOut_, "unreadable block left out", "unreadable blocks left out");
        if (!comparisonEnd_.empty()) {
            add(blocksCompared_, "block was compared", "blocks were compared");
            words = comparisonEnd_ + (words.empty() ? "" : ": ") + words;
        }
        return words;
    }

    void tellComparison() {
        const std::string sector =
            differing_ == 0 ? "" : ". A sector has " + std::to_string(world_.destination.bytesPerSector) + " bytes";
        if (equal()) {
            informBox("****** VERIFY SUCCEEDED ******", "The DESTINATION holds what was copied: " + comparison());
        } else {
            informBox("****** VERIFY FAILED ******", "The DESTINATION has NOT been verified: " + comparison() + sector);
        }
    }

    void tellMount() {
        static constexpr std::array<const char*, 4> kMounted{"a volume", "K:", "K:, C:\\mnt\\",
                                                             "K:, C:\\mnt\\, a volume without a letter"};
        const std::string mounted = kMounted[world_.mountedVolumes().size()];
        stopBox("***** MOUNTED DURING THE COPY *****",
                "Windows has mounted " + mounted +
                    " on the DESTINATION during the copy, and refuses writes inside mounted volumes. " +
                    std::to_string(failedWrites_) + (failedWrites_ == 1 ? " write" : " writes") +
                    " failed: the copy is not whole. Press 'Disable Drive Mounting', and copy again: the DESTINATION "
                    "is cleaned first");
    }

    std::uint32_t refused(std::initializer_list<const DriveRecord*> drives) {
        status(" Status: Not started");
        for (const DriveRecord* drive : drives) {
            driveStatus(*drive, outcome("not started"));
        }
        flags_.running = 0;
        return 0;
    }

    // --- the jobs ---

    std::uint32_t forwardClone() {
        flags_.carX = 10;
        flags_.carY = 182;
        clearFlags();
        world_.source.badReadCount = 0;
        splitRange(static_cast<std::uint64_t>(std::min(world_.source.sizeBytes, world_.destination.sizeBytes)),
                   sourceUnit());
        expect(static_cast<std::uint64_t>(world_.source.sizeBytes), rangeEnd_);
        if (!paddingWanted("SOURCE")) {
            return declined({&world_.source, &world_.destination});
        }
        raise();
        status(" Status: Idle");
        repaint();
        const Ready ready = prepare(true);
        if (ready == Ready::kRefused) {
            return refused({&world_.source, &world_.destination});
        }
        const bool wanted = ready == Ready::kYes;
        beginTiming();
        beginCloneFiles(wanted);
        beginRun(wanted);
        std::uint64_t k = 0;
        for (; wanted && k < full_; ++k) {
            const std::uint64_t offset = k * block_;
            readBlock(offset, block_);
            writeBlock(offset, block_);
            countBytes(block_);
            if (tooManyBadBlocks(750) || flags_.running == 0) {
                break;
            }
            progress(k, true, Track::kClone, "Status", "Cloning", {&world_.source, &world_.destination});
        }
        if (remainder_ > 0 && flags_.running == 1) {
            readBlock(full_ * block_, remainder_);
            writeBlock(full_ * block_, remainder_);
            countBytes(remainder_);
            remainderMoved_ = true;
            tooManyBadBlocks(750);
        }
        flushDrive(wanted && k == full_);
        remember(wanted, wanted && k == full_, wanted && whole(k), true);
        showLosses(completed(wanted && whole(k)), stopper(wanted && whole(k)));
        endOrRefute(wanted && k == full_, " Image Completed", 760, " User Terminated Image");
        endClone(wanted && whole(k));
        flags_.running = 0;
        repaintCloneTrack();
        return 1;
    }

    std::uint32_t reverseClone() {
        flags_.carX = 760;
        flags_.carY = 182;
        clearFlags();
        world_.source.badReadCount = 0;
        splitRange(static_cast<std::uint64_t>(std::min(world_.source.sizeBytes, world_.destination.sizeBytes)),
                   sourceUnit());
        expect(static_cast<std::uint64_t>(world_.source.sizeBytes), rangeEnd_);
        if (!paddingWanted("SOURCE")) {
            return declined({&world_.source, &world_.destination});
        }
        raise();
        status(" Status: Idle");
        repaint();
        const Ready ready = prepare(true);
        if (ready == Ready::kRefused) {
            return refused({&world_.source, &world_.destination});
        }
        const bool wanted = ready == Ready::kYes;
        beginTiming();
        beginCloneFiles(wanted);
        beginRun(wanted);
        std::uint64_t offset = bytes_ - block_;
        std::uint64_t k = 0;
        while (wanted && k < full_) {
            readBlock(offset, block_);
            writeBlock(offset, block_);
            countBytes(block_);
            if (tooManyBadBlocks(500) || flags_.running == 0) {
                break;
            }
            progress(k, false, Track::kClone, "Status", "Cloning", {&world_.source, &world_.destination});
            ++k;
            offset -= block_;
        }
        if (remainder_ > 0 && flags_.running == 1) {
            readBlock(0, remainder_);
            writeBlock(0, remainder_);
            countBytes(remainder_);
            remainderMoved_ = true;
            tooManyBadBlocks(500);
        }
        flushDrive(wanted && k == full_);
        remember(wanted, wanted && k == full_, wanted && whole(k), false);
        showLosses(completed(wanted && whole(k)), stopper(wanted && whole(k)));
        endOrRefute(wanted && k == full_, " Clone SUCCESSFULLY Completed", 10, " User Terminated Clone");
        endClone(wanted && whole(k));
        repaintCloneTrack();
        flags_.running = 0;
        return 1;
    }

    void beginCloneFiles(bool wanted) {
        if (wanted) {
            beginDriveFiles("CLONE--Model 100%s.S_N 7");
        }
    }

    void endClone(bool everything) {
        driveStatus(world_.source, comparedOutcome(everything ? "" : "not completed"));
        driveStatus(world_.destination, comparedOutcome(everything ? "" : "not completed"));
    }

    /// The image under the first number that nobody has. Every number that is tried is used up.
    std::optional<World::OpenFile> createImage(std::string& name, int& number) {
        while (true) {
            number = world_.nextNumber();
            name = text("%s\\%s.%d.img", World::kFolder, world_.source.model.c_str(), number);
            if (world_.exists(name) || world_.exists(hashFileName(number)) || world_.exists(name + ".sha256") ||
                world_.exists(name + ".map") ||
                world_.exists(
                    text("%s\\ACQUISITION--%s.%d.txt", World::kFolder, world_.source.model.c_str(), number))) {
                continue;
            }
            std::optional<World::OpenFile> image = world_.createImage(name);
            if (image || !world_.exists(name)) {
                return image;
            }
        }
    }
    [[nodiscard]] std::string hashFileName(int number) const {
        return text("%s\\MD5-HASH--%s.%d.txt", World::kFolder, world_.source.model.c_str(), number);
    }

    bool writeImage(World::OpenFile& image, std::size_t length) {
        notCopied_ -= std::min<std::uint64_t>(notCopied_, length);
        const std::uint64_t offset = image.position;
        const World::Transfer done = world_.writeFile(image, std::span(buffer_).first(length));
        const bool written = done.ok && done.count == length;
        failedWrites_ += written ? 0 : 1;
        stored(image.path, offset, offset + length, written, done.gone);
        return written;
    }

    std::uint32_t imageToFile() {
        flags_.carX = 10;
        flags_.carY = 32;
        clearFlags();
        world_.source.badReadCount = 0;
        if (!isSourceUnchanged()) {
            return refused({&world_.source});
        }
        imageInto(World::kFolder);
        int number = 0;
        std::string name;
        std::optional<World::OpenFile> image = createImage(name, number);
        if (!image) {
            status("Could not CREATE DESTINATION image");
            driveStatus(world_.source, outcome("not started"));
            return 0;
        }
        imageInto(name);
        beginImageFiles(name, number);
        split(notCopied_);
        beginTiming();
        const bool wanted = raise();
        status(" Status: Idle");
        repaint();
        if (wanted) {
            underWay();
        }
        const auto couldNotWrite = [&] {
            showLosses("not completed", "a failed write");
            driveStatus(world_.source, outcome("not completed"));
            world_.close(*image);
            status("Could not WRITE to DESTINATION image");
            return 0; // running stays 1
        };
        beginRun(wanted);
        std::uint64_t k = 0;
        while (wanted && k < full_) {
            readBlock(k * block_, block_);
            if (!writeImage(*image, block_)) {
                tellFailedFlush();
                return couldNotWrite();
            }
            countBytes(block_);
            if (tooManyBadBlocks(750) || flags_.running == 0) {
                break;
            }
            progress(k, true, Track::kImage, "Status", "Imaging", {&world_.source});
            ++k;
        }
        if (remainder_ > 0 && flags_.running == 1) {
            readBlock(full_ * block_, remainder_);
            if (!writeImage(*image, remainder_)) {
                tellFailedFlush();
                return couldNotWrite();
            }
            countBytes(remainder_);
            remainderMoved_ = true;
            tooManyBadBlocks(750);
        }
        if (!(wanted && k == full_)) {
            tellFailedFlush();
        } else if (!flushRest(name)) {
            return couldNotWrite();
        }
        showLosses(completed(wanted && whole(k)), stopper(wanted && whole(k)));
        driveStatus(world_.source, outcome(wanted && whole(k) ? "" : "not completed"));
        end(wanted && k == full_, " Image  SUCCESSFULLY Completed", 760, " Image Terminated -- Not Completed");
        world_.close(*image);
        flags_.running = 0;
        repaintImageTrack();
        return 1;
    }

    /// `beforeBox` is what the files say before a box that may wait until the morning.
    bool beginHashing(const std::function<void()>& beforeBox) {
        return (!wantsMd5_ || beginMd5(beforeBox)) && (!world_.script.alsoSha256 || beginSha256(beforeBox));
    }

    bool beginMd5(const std::function<void()>& beforeBox) {
        switch (world_.beginHashing()) {
        case World::HasherTrouble::kNoProvider:
            beforeBox();
            stopBox("****** HASH ERROR ******", "Could not get HANDLE to CRYPTO provider. Exiting");
            return false;
        case World::HasherTrouble::kNoHash:
            beforeBox();
            stopBox("****** HASH ERROR ******", "Could not get MD5 HASH for Crypto Provider. Exiting");
            return false;
        case World::HasherTrouble::kNone:
            digest_ = {};
            return true;
        }
        return false;
    }
    bool beginSha256(const std::function<void()>& beforeBox) {
        sha256_ = {};
        switch (world_.beginSha256()) {
        case World::HasherTrouble::kNoProvider:
            beforeBox();
            stopBox("****** HASH ERROR ******", "Could not open the system's provider of SHA-256. Nothing was read. "
                                                "Start again without SHA-256");
            return false;
        case World::HasherTrouble::kNoHash:
            beforeBox();
            stopBox("****** HASH ERROR ******",
                    "Could not begin a SHA-256 HASH. Nothing was read. Start again without SHA-256");
            return false;
        case World::HasherTrouble::kNone:
            return true;
        }
        return false;
    }

    /// Adds what lies in the buffer to the digests. Null when all have it, else the text of each that has not.
    struct HashTexts {
        const char* md5 = nullptr;
        const char* sha256 = nullptr;
    };
    HashTexts hash(std::size_t length) {
        const auto bytes = std::span(buffer_).first(length);
        HashTexts texts;
        if (wantsMd5_ && !world_.hash(digest_, bytes)) {
            texts.md5 = "Could not get HASH data. Exiting";
        }
        if (world_.script.alsoSha256 && !world_.hashSha256(sha256_, bytes)) {
            texts.sha256 = "Could not add a block to the SHA-256 HASH. Nothing more is read. Start again";
        }
        return texts;
    }

    std::uint32_t forensicImage() {
        flags_.carX = 10;
        flags_.carY = 32;
        clearFlags();
        world_.source.badReadCount = 0;
        if (!isSourceUnchanged()) {
            return refused({&world_.source});
        }
        imageInto(World::kFolder);
        int number = 0;
        std::string name;
        std::optional<World::OpenFile> image = createImage(name, number);
        if (!image) {
            status("Could not CREATE DESTINATION image");
            driveStatus(world_.source, outcome("not started"));
            return 0;
        }
        const auto closeImage = [&] {
            if (image) {
                world_.close(*image);
                image.reset();
            }
        };
        imageInto(name);
        beginImageFiles(name, number);
        split(notCopied_);
        beginTiming();
        status(" Status: Idle");
        if (!beginHashing([this] { endFiles("a failed hash"); })) {
            closeImage();
            driveStatus(world_.source, outcome("not started"));
            return 0;
        }
        repaint();
        const bool wanted = raise();
        flags_.animationBlocks = 0;
        for (const std::uint64_t percent : {10U, 30U, 40U, 50U, 75U}) {
            world_.chasePoints.push_back(static_cast<std::int64_t>(full_ * percent / 100));
        }
        if (wanted) {
            underWay();
        }
        world_.aboutToCopy();
        const char* lost = nullptr;
        const auto couldNotWrite = [&] {
            lost = "written";
            closeImage();
            status("Could not WRITE to DESTINATION image");
            flags_.running = 0;
            timer(750);
        };
        const auto store = [&](std::size_t length) {
            if (!writeImage(*image, length)) {
                couldNotWrite();
            }
            const HashTexts missing = hash(length);
            for (const char* const trouble : {missing.md5, missing.sha256}) {
                if (trouble != nullptr) {
                    hashFailed_ = true;
                    lost = lost == nullptr ? "hashed" : lost;
                    ending_ = "not completed";
                    endFiles(lostBy(lost));
                    stopBox("****** HASH ERROR ******", trouble);
                    closeImage();
                    flags_.running = 0;
                    timer(750);
                }
            }
        };
        beginRun(wanted);
        std::uint64_t k = 0;
        while (wanted && k < full_) {
            readBlock(k * block_, block_);
            store(block_);
            countBytes(block_);
            if (tooManyBadBlocks(750) || flags_.running == 0) {
                break;
            }
            progress(k, true, Track::kImage, "Image Status", "Imaging", {&world_.source});
            ++k;
            ++flags_.animationBlocks;
        }
        if (remainder_ > 0 && flags_.running == 1) {
            readBlock(full_ * block_, remainder_);
            store(remainder_);
            countBytes(remainder_);
            remainderMoved_ = true;
            tooManyBadBlocks(750);
        }
        const bool movedAll = wanted && k == full_ && lost == nullptr;
        const bool flushLost = movedAll && !flushRest(name);
        if (flushLost) {
            couldNotWrite();
        } else if (!movedAll && lost == nullptr) {
            tellFailedFlush();
        }
        // The remainder is a block like the others: without it the image is no success, and without its digest it is
        // none either.
        imagedWhole_ = wanted && whole(k) && lost == nullptr;
        const bool hasMd5 = !world_.digestFails();
        const bool hasDigest = hasMd5 && !(world_.script.alsoSha256 && world_.sha256DigestFails());
        const bool complete = movedAll && !flushLost && hasDigest;
        hashFailed_ = hashFailed_ || !hasDigest;
        if (complete) {
            recordedDigest_ = hexOf(digest_.value());
            recordedSha256_ = world_.script.alsoSha256 ? hexOf(sha256_.stretched()) : recordedSha256_;
        }
        showLosses(imagedWhole_ && hashFailed_ ? "not hashed" : completed(imagedWhole_),
                   lost != nullptr ? lostBy(lost) : stopper(imagedWhole_));
        end(complete, " Image SUCCESSFULLY Completed", 760, " Image Terminated -- Not Completed");
        if (hasDigest) {
            imaged_ = digest_.value();
            if (complete) {
                hashFile(imaged_, number);
                digestText_ = ". MD5";
                for (const unsigned byte : imaged_) {
                    digestText_ += text(" %02X", byte);
                }
                if (world_.script.alsoSha256) {
                    sha256File(name);
                }
            }
        }
        driveStatus(world_.source, outcome(!imagedWhole_ ? "not completed" : hashFailed_ ? "not hashed" : ""));
        repaintImageTrack();
        closeImage();
        flags_.running = 0;
        const bool lastLost = flushLost || (lost != nullptr && (remainder_ > 0 ? remainderMoved_ : k + 1 == full_));
        const auto lastBlock = [&](const char* what) {
            return "The last block of [" + path_ + "] could not be " + what +
                   ". The image is not whole, and it has no hash file. Make it anew";
        };
        if (flushLost) {
            trouble_ = "Not everything of [" + path_ +
                       "] could be brought onto the medium. The image is not whole, and it has no hash file. Make it "
                       "anew";
        } else if (lastLost) {
            trouble_ = lastBlock(lost);
        } else if (movedAll && !hasDigest) {
            trouble_ = hasMd5 ? "The SHA-256 HASH of [" + path_ +
                                    "] could not be read. The image has no hash files, and it cannot be verified. "
                                    "Make it anew"
                              : "The HASH of [" + path_ +
                                    "] could not be read. The image has no hash file, and it cannot be verified. "
                                    "Make it anew";
            troubleCaption_ = hasMd5 ? "****** HASH ERROR ******" : troubleCaption_;
        }
        verifiable_ = complete;
        return 1;
    }

    static std::string hexOf(const auto& digest) {
        std::string hex;
        for (const unsigned byte : digest) {
            hex += text("%02x", byte);
        }
        return hex;
    }
    static std::string lostBy(const std::string& lost) { return lost == "hashed" ? "a failed hash" : "a failed write"; }

    /// What follows an imaging pass once its row is written: what the user has to answer.
    void afterwards() {
        if (!trouble_.empty()) {
            stopBox(troubleCaption_, trouble_);
        }
        if (verifiable_ && askBox("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?")) {
            beginVerification();
            jobRow("Verification of [" + path_ + "]: begins");
            if (verify(path_, imaged_) == 0) {
                endVerification("could not be made");
                jobRow("Verification of [" + path_ + "]: could not be made");
                callUser(false);
            }
        }
    }

    void hashFile(const Md5Digest& digest, int number) {
        const std::string name = hashFileName(number);
        const LocalMoment now = World::now();
        std::string lines = "KVL Data MD5 HASH\n";
        lines += text("Date:\t\t\t%02d/%02d/%04d\n", now.month, now.day, now.year);
        lines += text("Time:\t\t\t%02d:%02d:%02d\n", now.hour, now.minute, now.second);
        lines += text("Drive Model:\t[%s]\n", world_.source.model.c_str());
        lines += text("Serial Number:\t[%s]\n", world_.source.serialNumber.c_str());
        lines += text("Total Sectors:\t[%" PRId64 "]\n", world_.source.sizeBytes / world_.source.bytesPerSector);
        lines += "HASH:\t\t\t";
        for (const unsigned byte : digest) {
            lines += text("%02X ", byte);
        }
        if (!world_.writeHashFile(name, lines)) {
            log("Could not CREATE HASH file for [" + name + "]. Exiting.");
        }
    }

    /// As `sha256sum -c` takes it.
    void sha256File(const std::string& image) {
        imagedSha256_ = sha256_.stretched();
        std::string hex;
        digestText_ += ". SHA-256";
        for (const unsigned byte : imagedSha256_) {
            hex += text("%02x", byte);
            digestText_ += text(" %02X", byte);
        }
        const std::string name = image.substr(std::string(World::kFolder).size() + 1);
        if (!world_.writeHashFile(image + ".sha256", hex + " *" + name + "\n")) {
            log("Could not CREATE HASH file for [" + image + ".sha256]. Exiting.");
        }
    }

    static std::string hashLine(const char* title, const Md5Digest& d) {
        return text("%s [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] [%02X] "
                    "[%02X] [%02X] [%02X]\n",
                    title, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], d[8], d[9], d[10], d[11], d[12], d[13],
                    d[14], d[15]);
    }

    /// The imaging pass's outcome with a word of its verification.
    std::string imagingOutcome(const std::string& trouble) const {
        return outcome(imagedWhole_ ? trouble : trouble.empty() ? "not completed" : "not completed, " + trouble);
    }

    int verify(const std::string& name, const Md5Digest& imaged) {
        std::optional<World::OpenFile> image = world_.openImage(name, true);
        if (!image) {
            status("Could not open image for VERIFICATION");
            driveStatus(world_.source, imagingOutcome("verification failed"));
            return 0;
        }
        flags_.succeeded = 0;
        if (world_.script.imageCannotBeRewound) {
            driveStatus(world_.source, imagingOutcome("verification failed"));
            return 0; // the file stays open
        }
        split(world_.files[name].size());
        beginTiming();
        world_.stopAsked = false; // the user has said yes since
        raise();
        status(" Beginning Verification");
        if (!hashImage(*image, {&world_.source})) {
            world_.close(*image);
            driveStatus(world_.source, imagingOutcome("verification failed"));
            return 0; // running stays as it is
        }
        const Md5Digest verified = digest_.value();
        const bool equal = imaged == verified && (!world_.script.alsoSha256 || sha256_.stretched() == imagedSha256_);
        world_.close(*image);
        flags_.running = 0;
        flags_.succeeded = 1;
        repaintImageTrack();
        driveStatus(world_.source, equal ? imagingOutcome("") + ", verified" : imagingOutcome("not verified"));
        endVerification(equal ? "verified" : readingStopped_ ? "not verified, stopped by the user" : "not verified");
        jobRow("Verification of [" + name + "]: " + (equal ? "verified" : "not verified"));
        callUser(equal && imagedWhole_ && losses() == "Nothing was lost");
        showVerdict(imaged, verified, equal);
        return 1;
    }

    void showVerdict(const std::optional<Md5Digest>& known, const Md5Digest& made, bool equal) {
        if (known) {
            world_.see("print " + hashLine("Match HASH:", *known));
            world_.see("print " + hashLine("Gen   HASH:", made));
        }
        if (equal) {
            informBox("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        } else {
            informBox("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
        }
    }

    void notMade() { endVerification("could not be made"); }

    /// Reads the image, as far as nobody asks to stop. False, and the user was told, when it has no digests.
    bool hashImage(World::OpenFile& image, std::initializer_list<const DriveRecord*> drives) {
        readingStopped_ = false;
        if (!beginHashing([this] { notMade(); })) {
            return false;
        }
        const auto hashNext = [&](std::size_t length) {
            const World::Transfer done = world_.readFile(image, std::span(buffer_).first(length));
            if (!done.ok || done.count != length) {
                status("Could not READ image for VERIFICATION");
                return false;
            }
            const HashTexts missing = hash(length);
            const char* const trouble = missing.md5 != nullptr ? missing.md5 : missing.sha256;
            if (trouble != nullptr) {
                notMade();
                stopBox("****** HASH ERROR ******", trouble);
            }
            if (trouble == nullptr) {
                countBytes(length);
            }
            return trouble == nullptr;
        };
        const auto gaveUp = [&] {
            endRun();
            return false;
        };
        beginRun(true);
        std::uint64_t k = 0;
        while (k < full_) {
            if (!hashNext(block_)) {
                return gaveUp();
            }
            if (flags_.running == 0) {
                readingStopped_ = true;
                break;
            }
            progress(k, true, Track::kImage, "Status", "Verifying", drives);
            ++k;
        }
        readingStopped_ = readingStopped_ || (remainder_ > 0 && flags_.running == 0);
        if (remainder_ > 0 && flags_.running == 1 && !hashNext(remainder_)) {
            return gaveUp();
        }
        endRun();
        progress(k, true, Track::kImage, "Status", "Verifying", drives);
        if (wantsMd5_ && world_.digestFails()) {
            notMade();
            stopBox("****** HASH ERROR ******", "Could not get HASH PARAM. Exiting");
            return false;
        }
        if (world_.script.alsoSha256 && world_.sha256DigestFails()) {
            notMade();
            stopBox("****** HASH ERROR ******",
                    "Could not get the SHA-256 HASH at its end. Nothing was compared. Start again");
            return false;
        }
        return true;
    }

    std::uint32_t verifyImage() {
        flags_.carX = 10;
        flags_.carY = 32;
        clearFlags();
        world_.see("losses []");
        world_.seeDigests({}, {});
        jobRow(std::string("Verification of [") + World::kSourceImage + "]: begins");
        if (!compareImage()) {
            jobRow(std::string("Verification of [") + World::kSourceImage + "]: could not be made");
            callUser(false);
            return 0;
        }
        return 1;
    }

    /// False when no comparison was made.
    bool compareImage() {
        const Digests known = world_.knownDigests();
        wantsMd5_ = known.md5.has_value();
        std::optional<World::OpenFile> image = world_.openImage(World::kSourceImage, true);
        if (!image) {
            status("Could not open image for VERIFICATION");
            return false;
        }
        split(world_.files[World::kSourceImage].size());
        const bool wanted = raise();
        status(" Status: Idle");
        repaint();
        if (!wanted) {
            world_.close(*image);
            return false;
        }
        beginTiming();
        status(" Beginning Verification");
        const bool hashed = hashImage(*image, {});
        world_.close(*image);
        flags_.running = 0;
        if (!hashed) {
            return false;
        }
        Digests made;
        if (known.md5) {
            made.md5 = digest_.value();
        }
        if (known.sha256) {
            made.sha256 = sha256_.stretched();
        }
        const bool equal = known == made;
        flags_.succeeded = equal ? 1 : 0;
        repaintImageTrack();
        world_.seeDigests(known, made);
        jobRow(std::string("Verification of [") + World::kSourceImage + "]: " + (equal ? "verified" : "not verified"));
        callUser(equal);
        showVerdict(known.md5, digest_.value(), equal);
        return true;
    }

    std::uint32_t imageToDrive() {
        flags_.carX = 10;
        flags_.carY = 182;
        clearFlags();
        std::optional<World::OpenFile> image = world_.openImage(World::kSourceImage, false);
        if (!image) {
            const std::string line = text("ImageToDrive: [%s] OPEN_EXISTING FAILED", World::kSourceImage);
            log(line);
            stopBox("***** FATAL SYSTEM ERROR *****", line);
            driveStatus(world_.destination, outcome("not started"));
            return 0;
        }
        std::uint64_t bytes = world_.files[World::kSourceImage].size();
        notCopied_ = bytes;
        if (bytes > static_cast<std::uint64_t>(world_.destination.sizeBytes)) {
            if (!askDefaultNoBox("***** Image File Too Large *****",
                                 "Image File is LARGER than DESTINATION drive. Do you want to "
                                 "truncate file and continue?")) {
                return declined({&world_.destination}); // the image stays open
            }
            bytes = static_cast<std::uint64_t>(world_.destination.sizeBytes);
        }
        splitRange(bytes, 1);
        if (!paddingWanted("image")) {
            return declined({&world_.destination});
        }
        raise();
        status(" Status: Idle");
        repaint();
        const Ready ready = prepare(false);
        if (ready == Ready::kRefused) {
            return refused({&world_.destination});
        }
        const bool wanted = ready == Ready::kYes;
        beginTiming();
        expect(notCopied_, rangeEnd_);
        if (wanted) {
            beginDriveFiles("IMAGE-TO-DRIVE--source.img");
        }
        const auto readNext = [&](std::uint64_t offset, std::size_t length) {
            const auto within = static_cast<std::size_t>(std::min<std::uint64_t>(length, rangeEnd_ - offset));
            const World::Transfer done = world_.readFile(*image, std::span(buffer_).first(within));
            zeroBehindRange(offset, length);
            return done.ok && done.count == within;
        };
        const auto couldNotRead = [&] {
            ++unreadable_;
            flushDrive(false);
            remember(true, false, false, true);
            showLosses("not completed", "a failed read");
            driveStatus(world_.destination, outcome("not completed"));
            world_.close(*image);
            status("Could not READ FROM SOURCE image. TERMINATING");
            flags_.running = 0;
            return 0;
        };
        beginRun(wanted);
        std::uint64_t k = 0;
        while (wanted && k < full_) {
            if (!readNext(k * block_, block_)) {
                return couldNotRead();
            }
            writeBlock(k * block_, block_);
            countBytes(block_);
            if (flags_.running == 0) {
                break;
            }
            progress(k, true, Track::kClone, "Status", "Writing image", {&world_.destination});
            ++k;
        }
        if (remainder_ > 0 && flags_.running == 1) {
            if (!readNext(full_ * block_, remainder_)) {
                return couldNotRead();
            }
            writeBlock(full_ * block_, remainder_);
            countBytes(remainder_);
            remainderMoved_ = true;
        }
        flushDrive(wanted && k == full_);
        remember(wanted, wanted && k == full_, wanted && whole(k), true);
        showLosses(completed(wanted && whole(k)), wanted && whole(k) ? "nobody" : "the user");
        driveStatus(world_.destination, comparedOutcome(wanted && whole(k) ? "" : "not completed"));
        endOrRefute(wanted && k == full_, " Image To Drive SUCCESSFULLY Completed", 760,
                    " Image To Drive Terminated -- Not Completed");
        flags_.running = 0;
        repaintCloneTrack();
        return 1; // the image stays open
    }

    World& world_;
    JobFlags& flags_;
    const std::size_t block_;
    Bytes buffer_;
    std::uint64_t bytes_ = 0;
    std::uint64_t dealtWith_ = 0; ///< bytes of the run
    std::uint64_t full_ = 0;
    std::uint64_t remainder_ = 0;
    std::int64_t start_ = 0;
    int lastPercent_ = -1;
    std::uint64_t unreadable_ = 0;
    std::uint64_t failedWrites_ = 0;
    std::uint64_t unflushed_ = 0; ///< blocks stored since the last flush
    bool flushed_ = true;         ///< no flush has failed
    bool gone_ = false;           ///< the destination, when the last block was to be stored
    bool goneAtFlush_ = false;    ///< the first flush that failed has found it gone
    bool driveUsed_ = false;      ///< a block was to be stored on the destination drive
    bool storedAny_ = false;      ///< one has got there
    bool shutOut_ = false;        ///< one was refused after that
    bool unmounted_ = false;      ///< no volume was mounted on it before the first block
    bool mountedMeanwhile_ = false;
    std::uint64_t rangeEnd_ = ~0ULL; ///< bytes: what is copied, as far as it is read and as far as it is written
    std::uint64_t readEnd_ = ~0ULL;
    std::uint64_t writeEnd_ = ~0ULL;
    std::uint64_t odd_ = 0;
    std::uint64_t notCopied_ = 0;                                     ///< bytes of the source
    static constexpr const char* kNow = "2024-03-01 09:05:07 +00:00"; ///< the world's only moment
    std::string copied_;                                              ///< a status for each byte of the source
    std::string read_;
    std::uint64_t room_ = 0;                                      ///< bytes of the source that the copy has room for
    bool lastWhole_ = true;                                       ///< the last block read
    std::vector<std::pair<std::uint64_t, std::uint64_t>> cached_; ///< places stored since the last flush
    std::vector<std::pair<std::uint64_t, std::uint64_t>> doubtful_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> flushing_; ///< places stored before the last flush
    std::int64_t savedAt_ = 0;    ///< when the files were written, or the first block stored; milliseconds, 0: not yet
    bool readingStopped_ = false; ///< of a finished image
    bool lastFlushFailed_ = false;
    std::string mapName_;
    std::string recordName_;
    std::set<std::string> written_;
    std::set<std::string> unwritten_;
    bool ended_ = false;
    bool readOnlyAtEnd_ = false;
    std::string stopper_ = "nobody";
    std::string recordedDigest_ = "not made";
    std::string recordedSha256_ = "not made";
    std::string verification_ = "not made";
    std::string mapText_; ///< in the row of the job's end
    bool hashFailed_ = false;
    bool remainderMoved_ = false;
    bool imagedWhole_ = false;
    ScriptedDigest digest_;
    ScriptedDigest sha256_;
    bool wantsMd5_ = true;

    std::set<std::uint64_t> lost_; ///< places of the blocks that could not be read
    bool compared_ = false;
    std::string comparisonEnd_; ///< in words; empty when it went through to its end
    std::uint64_t blocksCompared_ = 0;
    std::uint64_t differing_ = 0;
    std::uint64_t notReadAgain_ = 0;
    std::uint64_t readsFailed_ = 0;
    std::uint64_t leftOut_ = 0;
    std::uint64_t firstDifference_ = ~0ULL;

    std::string ending_ = "not started";
    std::string path_; ///< of the image that was made
    std::string digestText_;
    std::string trouble_; ///< at the end of an image, in words
    std::string troubleCaption_ = "***** IMAGE NOT COMPLETE *****";
    bool verifiable_ = false;
    Md5Digest imaged_{};
    Sha256Digest imagedSha256_{};
};

} // namespace torvane::testing
