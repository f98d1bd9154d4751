#pragma once

#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "records/drive_record.h"
#include "tests/unit/copy_model/script.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::testing {

using Bytes = std::vector<std::byte>;

[[nodiscard]] inline std::string_view textOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What the job's flag and the race track's numbers were when something happened.
struct JobFlags {
    std::atomic<std::int32_t> running{0};
    std::atomic<std::int32_t> failed{0};
    std::atomic<std::int32_t> explosionFrame{0};
    std::atomic<std::int32_t> succeeded{0};
    std::atomic<std::int32_t> carX{0};
    std::atomic<std::int32_t> carY{0};
    std::atomic<std::int64_t> animationBlocks{0};
};

/// An order-dependent digest of 16 bytes. Any good one will do: both sides of the comparison use it.
class ScriptedDigest {
  public:
    void add(std::span<const std::byte> bytes) {
        for (const std::byte byte : bytes) {
            low_ = (low_ ^ std::to_integer<std::uint64_t>(byte)) * 0x100000001B3ULL;
            high_ = (high_ + std::to_integer<std::uint64_t>(byte) + 1) * 0x9E3779B97F4A7C15ULL;
        }
    }
    [[nodiscard]] Md5Digest value() const {
        Md5Digest digest{};
        std::memcpy(digest.data(), &low_, sizeof low_);
        std::memcpy(digest.data() + sizeof low_, &high_, sizeof high_);
        return digest;
    }
    /// The same stretched to the length of a SHA-256.
    [[nodiscard]] Sha256Digest stretched() const {
        const Md5Digest half = value();
        Sha256Digest digest{};
        std::copy(half.begin(), half.end(), digest.begin());
        std::copy(half.rbegin(), half.rend(), digest.begin() + half.size());
        return digest;
    }

  private:
    std::uint64_t low_ = 0xCBF29CE484222325ULL;
    std::uint64_t high_ = 1;
};

/// Drives, files, clock and user as one script has them, and a record of all that could be seen. The job under test and
/// the plain sequential model each run in a world of their own; then the two worlds are compared.
///
/// Only reads of either drive, hashing and flushing may come from another thread than the job's.
class World {
  public:
    explicit World(const Script& theScript) : script(theScript) {
        std::mt19937_64 random(script.seed);
        source.model.assign("Model 100%s");
        source.serialNumber.assign("S/N 7");
        source.driveNumber = 3;
        source.bytesPerSector = script.sourceSector;
        source.recordKind = script.sourceIsImageFile ? kRecordKindImageFile : kRecordKindPhysicalDrive;
        source.sizeBytes = script.sourceBytes;
        source.badReadCount = 99; // left by an earlier job
        destination.model.assign("Destination");
        destination.driveNumber = 12;
        destination.serialNumber.assign("D 9");
        destination.bytesPerSector = script.destinationSector;
        destination.sizeBytes = script.destinationBytes;
        destination.writeErrorCount = 5; // never reset
        sourceBytes = noise(random, script.sourceBytes);
        destinationBytes = noise(random, script.destinationBytes);
        files[kSourceImage] = sourceBytes;
        media_[kDestination] = destinationBytes;
        const std::size_t md5s = script.takenImages + script.takenHashFiles;
        const std::size_t sha256s = md5s + script.takenSha256Files;
        const std::size_t records = sha256s + script.takenRecords;
        for (std::size_t i = 0; i < records + script.takenMaps; ++i) {
            const std::string number = std::to_string(static_cast<std::size_t>(imageNumber) + 1 + i);
            const std::string image = "Model 100%s." + number + ".img";
            const std::string name = i < script.takenImages ? image
                                     : i < md5s             ? "MD5-HASH--Model 100%s." + number + ".txt"
                                     : i < sha256s          ? image + ".sha256"
                                     : i < records          ? "ACQUISITION--Model 100%s." + number + ".txt"
                                                            : image + ".map";
            files[std::string(kFolder) + "\\" + name] = Bytes(3, std::byte{'o'});
        }
    }

    static constexpr const char* kFolder = "E:\\Images";
    static constexpr const char* kSourceImage = "E:\\Images\\source.img";
    static constexpr const char* kDestination = "destination drive";

    // --- transfers: each is the number-th of its kind in job order ---

    /// Not sought: nothing else happened. Otherwise `count` bytes were moved, and `ok` is the call's result.
    struct Transfer {
        bool sought = true;
        bool ok = true;
        std::size_t count = 0;
        bool gone = false;    ///< the call failed because there is no such device any more
        bool refused = false; ///< it failed because the system does not let it be written there
    };

    [[nodiscard]] bool nextReadIsNotSought() const {
        return faultOf(script.reads, driveReads).fault == Fault::kSeekFails;
    }
    [[nodiscard]] bool nextRereadIsNotSought() const {
        return faultOf(script.rereads, rereads).fault == Fault::kSeekFails;
    }
    [[nodiscard]] bool nextWriteIsNotSought() const {
        return faultOf(script.writes, writesBegun).fault == Fault::kSeekFails;
    }

    Transfer readDrive(std::uint64_t offset, std::span<std::byte> buffer) {
        const std::uint64_t number = driveReads++;
        stopAt(StopAt::kRead, number);
        return read(script.reads, number, sourceBytes, offset, buffer, isWholeSectors(source, offset, buffer.size()));
    }

    Transfer writeDrive(std::uint64_t offset, std::span<const std::byte> buffer) {
        return write(kDestination, destinationBytes, offset, buffer,
                     isWholeSectors(destination, offset, buffer.size()));
    }

    /// Reads the destination.
    Transfer rereadDrive(std::uint64_t offset, std::span<std::byte> buffer) {
        const std::uint64_t number = rereads++;
        return read(script.rereads, number, destinationBytes, offset, buffer,
                    isWholeSectors(destination, offset, buffer.size()));
    }

    struct OpenFile {
        std::string path;
        std::size_t position = 0;
        std::uint64_t reads = 0;
        bool again = false; ///< it was read before, or written
    };

    Transfer readFile(OpenFile& file, std::span<std::byte> buffer) {
        const auto& faults = file.again ? script.verifyReads : script.reads;
        const Transfer done = read(faults, file.reads++, files[file.path], file.position, buffer, true);
        file.position += done.count;
        return done;
    }

    Transfer writeFile(OpenFile& file, std::span<const std::byte> buffer) {
        Bytes& content = files[file.path];
        content.resize(std::max(content.size(), file.position + buffer.size()));
        const Transfer done = write(file.path, content, file.position, buffer, true);
        file.position += done.count;
        content.resize(file.position);
        return done;
    }

    // --- the drives' identity, and the clean ---

    bool isStillTheSource() {
        see("source asked");
        return sourceQuestions++ < script.sourceChangesAt;
    }
    bool isStillTheDestination() {
        see("destination asked");
        return destinationQuestions++ < script.destinationChangesAt;
    }
    void rememberDestination() { see("destination remembered"); }

    std::optional<std::string> readTableAnew() {
        see("table read anew");
        return script.tableCannotBeRead ? std::optional<std::string>("No. (error 7)") : std::nullopt;
    }

    DiskChange clean() {
        see("clean");
        return script.clean;
    }
    std::vector<std::string> mountedVolumes() {
        see("volumes");
        std::vector<std::string> roots{"K:\\", "C:\\mnt\\", "\\\\?\\Volume{7}\\"};
        roots.resize(writesBegun == 0 ? script.mountedVolumes : script.mountedLater);
        return roots;
    }

    /// Brings what lies in the cache of a drive or file onto its medium. One that fails has lost it.
    Transfer flush(const std::string& name) {
        const TransferFault fault = faultOf(script.flushes, flushes++);
        const std::lock_guard lock(cacheMutex_);
        if (fault.fault == Fault::kNone) {
            for (const CachedWrite& write : cached_[name]) {
                Bytes& medium = media_[name];
                medium.resize(std::max(medium.size(), write.offset + write.bytes.size()));
                std::copy(write.bytes.begin(), write.bytes.end(),
                          medium.begin() + static_cast<std::ptrdiff_t>(write.offset));
            }
        }
        cached_[name].clear();
        return {.ok = fault.fault == Fault::kNone, .gone = fault.fault == Fault::kGone};
    }

    /// Whether the job's destination would hold the same if it were unplugged now.
    [[nodiscard]] bool isOnMedium() {
        const std::lock_guard lock(cacheMutex_);
        const bool drive = destinationBytes == media_[kDestination];
        return drive && std::all_of(openFiles.begin(), openFiles.end(), [this](const auto& file) {
                   return file.first == kSourceImage || files[file.first] == media_[file.first];
               });
    }

    // --- files ---

    [[nodiscard]] std::optional<OpenFile> createImage(const std::string& path) {
        if (script.imageCannotBeCreated || exists(path)) {
            return std::nullopt;
        }
        if (racesLost < script.lostRaces) {
            ++racesLost;
            files[path] = Bytes(5, std::byte{'r'});
            return std::nullopt;
        }
        files[path].clear();
        media_[path].clear();
        ++openFiles[path];
        return OpenFile{path};
    }

    [[nodiscard]] std::optional<OpenFile> openImage(const std::string& path, bool again) {
        const bool gone = script.imageGoesMeanwhile && script.job == ScriptedJob::kImageToDrive && again;
        if (script.imageCannotBeOpened || gone) {
            return std::nullopt;
        }
        const bool mayChange = path != kSourceImage || script.job == ScriptedJob::kVerifyImage;
        if (script.imageChangesMeanwhile && mayChange && !files[path].empty()) {
            files[path].front() ^= std::byte{1};
        }
        ++openFiles[path];
        return OpenFile{.path = path, .again = again};
    }

    [[nodiscard]] bool exists(const std::string& path) const { return files.contains(path); }

    void close(const OpenFile& file) { --openFiles[file.path]; }

    bool writeHashFile(const std::string& path, const std::string& text) {
        if (script.hashFileCannotBeCreated) {
            return false;
        }
        const auto bytes = std::as_bytes(std::span(text));
        files[path].assign(bytes.begin(), bytes.end());
        return true;
    }

    // --- the files that prove what was done ---

    /// Writes a record or a map whole, in an old one's place only where it is to replace one.
    bool saveEvidence(const std::string& path, const std::string& text, bool replaces) {
        const bool isMap = path.ends_with(".map");
        if ((isMap && script.mapCannotBeWritten) || (!isMap && script.recordCannotBeWritten) ||
            (exists(path) && !replaces)) {
            return false;
        }
        const auto bytes = std::as_bytes(std::span(text));
        files[path].assign(bytes.begin(), bytes.end());
        evidence.insert(path);
        return true;
    }

    /// What these files tell now.
    [[nodiscard]] std::uint64_t evidenceDigest() const {
        ScriptedDigest digest;
        for (const std::string& path : evidence) {
            digest.add(files.at(path));
        }
        std::uint64_t value = 0;
        std::memcpy(&value, digest.value().data(), sizeof value);
        return value;
    }

    /// The image that was made, by its map beside it.
    [[nodiscard]] std::string imagePath() const {
        for (const std::string& path : evidence) {
            if (path.ends_with(".img.map")) {
                return path.substr(0, path.size() - std::string_view(".map").size());
            }
        }
        return "";
    }
    [[nodiscard]] const Bytes& imageMade() const { return files.at(imagePath()); }
    [[nodiscard]] const Bytes& mediumOf(const std::string& name) { return media_[name]; }

    /// Nobody may write to the source once it has been copied from.
    [[nodiscard]] bool isSourceReadOnly() const { return writesBegun != 0; }

    std::int32_t nextNumber() { return ++imageNumber; }

    // --- hashing ---

    enum class HasherTrouble { kNone, kNoProvider, kNoHash };

    HasherTrouble beginHashing() {
        pass = hashPasses++;
        if (script.noProvider[pass]) {
            return HasherTrouble::kNoProvider;
        }
        return script.noHash[pass] ? HasherTrouble::kNoHash : HasherTrouble::kNone;
    }

    bool hash(ScriptedDigest& digest, std::span<const std::byte> bytes) {
        const std::uint64_t number = hashCalls++;
        stopAt(StopAt::kHash, number);
        if (script.hashes.contains(number)) {
            return false;
        }
        digest.add(bytes);
        return true;
    }

    [[nodiscard]] bool digestFails() const { return script.noDigest[pass]; }

    // The same of the SHA-256 of the pass that has begun.

    [[nodiscard]] HasherTrouble beginSha256() const {
        if (script.noSha256Provider[pass]) {
            return HasherTrouble::kNoProvider;
        }
        return script.noSha256Hash[pass] ? HasherTrouble::kNoHash : HasherTrouble::kNone;
    }

    bool hashSha256(ScriptedDigest& digest, std::span<const std::byte> bytes) {
        if (script.sha256Hashes.contains(sha256Calls++)) {
            return false;
        }
        digest.add(bytes);
        return true;
    }

    [[nodiscard]] bool sha256DigestFails() const { return script.noSha256Digest[pass]; }

    /// What is known of the source image: its digests before somebody has changed it.
    [[nodiscard]] Digests knownDigests() const {
        ScriptedDigest digest;
        digest.add(sourceBytes);
        Digests known;
        if (script.knowsMd5) {
            known.md5 = digest.value();
        }
        if (script.alsoSha256) {
            known.sha256 = digest.stretched();
        }
        return known;
    }

    void seeDigests(const Digests& known, const Digests& made) {
        const auto text = [](const auto& digest) {
            std::string bytes = digest ? "" : "none";
            for (const unsigned byte : digest.value_or(std::decay_t<decltype(*digest)>{})) {
                bytes += digest ? std::to_string(byte) + "." : "";
            }
            return bytes;
        };
        see("digests " + text(known.md5) + " " + text(made.md5) + " " + text(known.sha256) + " " + text(made.sha256));
    }

    // --- time ---

    std::int64_t tick() {
        stopAt(StopAt::kTick, looksAtClock++);
        return ticks += script.millisecondsPerTick;
    }
    static LocalMoment now() { return {2024, 3, 1, 9, 5, 7}; }

    void aboutToCopy() { stopAt(StopAt::kFirstBlock, 0); }

    // --- what can be seen ---

    void see(const std::string& what) {
        if (what == "status [ Beginning Verification]") {
            decay();
        }
        std::string line = what;
        for (const std::int64_t flag :
             {std::int64_t{flags.running}, std::int64_t{flags.failed}, std::int64_t{flags.explosionFrame},
              std::int64_t{flags.succeeded}, std::int64_t{flags.carX}, std::int64_t{flags.carY},
              flags.animationBlocks.load()}) {
            line += " " + std::to_string(flag);
        }
        if (what.starts_with("stop") || what.starts_with("ask") || what.starts_with("inform")) {
            line += " files " + std::to_string(evidenceDigest()); // as they stay while the box waits for its answer
        }
        seen.push_back(line);
        if (line.find("[COMPLETED") != std::string::npos) {
            completedOnMedium = completedOnMedium && isOnMedium();
        }
        stopAt(StopAt::kEvent, seen.size() - 1);
    }

    /// What "Terminate" does.
    std::function<void()> askToStop = [this] {
        stopAsked = true;
        flags.running = 0;
    };
    std::atomic<bool> stopAsked{false}; ///< since the job's start; the sequential model's alone

    const Script script;
    JobFlags flags;
    DriveRecord source;
    DriveRecord destination;
    Bytes sourceBytes;
    Bytes destinationBytes;
    std::map<std::string, Bytes> files;
    std::map<std::string, int> openFiles;
    std::set<std::string> evidence; ///< names of records and maps that were written
    std::vector<std::string> seen;
    std::vector<std::int64_t> chasePoints;
    bool completedOnMedium = true; ///< whenever a "Status" cell said so
    std::uint64_t driveReads = 0;
    std::uint64_t rereads = 0;
    std::atomic<std::uint64_t> writesBegun{0};
    std::atomic<std::uint64_t> flushes{0};
    std::uint64_t hashCalls = 0;
    std::uint64_t sha256Calls = 0;
    std::uint64_t sourceQuestions = 0;
    std::uint64_t destinationQuestions = 0;
    std::size_t racesLost = 0;
    std::size_t hashPasses = 0;
    std::size_t pass = 0;
    std::int64_t ticks = 1000000;
    std::uint64_t looksAtClock = 0;
    std::int32_t imageNumber = 40;

  private:
    struct CachedWrite {
        std::size_t offset;
        Bytes bytes;
    };

    void decay() {
        const std::lock_guard lock(cacheMutex_);
        const std::size_t begin = destinationBytes.size() / 2;
        const std::size_t end = std::min(begin + script.decayedBytes, destinationBytes.size());
        for (std::size_t i = begin; i < end; ++i) {
            destinationBytes[i] ^= std::byte{1};
            media_[kDestination][i] ^= std::byte{1};
        }
    }

    static Bytes noise(std::mt19937_64& random, std::int64_t size) {
        Bytes bytes(static_cast<std::size_t>(size));
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::byte>(random()); });
        return bytes;
    }

    /// A raw drive refuses what does not begin on a sector or is no whole number of them; a file does not.
    static bool isWholeSectors(const DriveRecord& drive, std::uint64_t offset, std::size_t length) {
        const bool file = drive.recordKind == kRecordKindImageFile;
        const auto sector = file ? 1 : static_cast<std::uint64_t>(drive.bytesPerSector);
        return offset % sector == 0 && length % sector == 0;
    }

    static TransferFault faultOf(const std::map<std::uint64_t, TransferFault>& faults, std::uint64_t number) {
        const auto found = faults.find(number);
        return found == faults.end() ? TransferFault{} : found->second;
    }

    static Transfer read(const std::map<std::uint64_t, TransferFault>& faults, std::uint64_t number, const Bytes& from,
                         std::uint64_t offset, std::span<std::byte> buffer, bool accepted) {
        const TransferFault fault = faultOf(faults, number);
        if (fault.fault == Fault::kSeekFails) {
            return {.sought = false, .ok = false};
        }
        if (!accepted || fault.fault == Fault::kGone) {
            return {.ok = false, .gone = fault.fault == Fault::kGone};
        }
        const std::size_t begin = std::min<std::size_t>(offset, from.size());
        std::size_t count = std::min(buffer.size(), from.size() - begin);
        if (fault.fault != Fault::kNone) {
            count = std::min(count, fault.part);
        }
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(begin), count, buffer.begin());
        return {.ok = fault.fault != Fault::kFails, .count = count};
    }

    Transfer write(const std::string& name, Bytes& into, std::uint64_t offset, std::span<const std::byte> buffer,
                   bool accepted) {
        const std::uint64_t number = writesBegun++;
        stopAt(StopAt::kWrite, number);
        const TransferFault fault = faultOf(script.writes, number);
        if (fault.fault == Fault::kSeekFails) {
            return {.sought = false, .ok = false};
        }
        if (!accepted || fault.fault == Fault::kGone || fault.fault == Fault::kRefused) {
            return {.ok = false,
                    .gone = fault.fault == Fault::kGone,
                    .refused = accepted && fault.fault == Fault::kRefused};
        }
        const std::size_t begin = std::min<std::size_t>(offset, into.size());
        std::size_t count = std::min(buffer.size(), into.size() - begin);
        if (fault.fault != Fault::kNone) {
            count = std::min(count, fault.part);
        }
        std::copy_n(buffer.begin(), count, into.begin() + static_cast<std::ptrdiff_t>(begin));
        const std::lock_guard lock(cacheMutex_);
        cached_[name].push_back(
            {.offset = begin, .bytes = Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count))});
        return {.ok = fault.fault != Fault::kFails, .count = count};
    }

    void stopAt(StopAt when, std::uint64_t number) const {
        if (script.stopAt == when && script.stopNumber == number) {
            askToStop();
        }
    }

    std::mutex cacheMutex_; ///< for the two below
    std::map<std::string, Bytes> media_;
    std::map<std::string, std::vector<CachedWrite>> cached_; ///< since the last flush
};

} // namespace torvane::testing
