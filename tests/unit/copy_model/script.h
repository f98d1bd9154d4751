#pragma once

#include "admin/changed_drive.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace torvane::testing {

enum class ScriptedJob { kForwardClone, kReverseClone, kImageToFile, kForensicImage, kImageToDrive, kVerifyImage };

/// What happens to one transfer.
enum class Fault {
    kNone,
    kSeekFails, ///< drives only
    kFails,     ///< after `part` bytes have been moved nevertheless
    kShort,     ///< succeeds with `part` bytes
    kGone,      ///< the device has vanished
    kRefused,   ///< the system does not let it be written there
};

struct TransferFault {
    Fault fault = Fault::kNone;
    std::size_t part = 0;
};

/// When the user asks the job to stop. Before the first block only the sequential model can be stopped.
enum class StopAt { kNever, kRead, kWrite, kHash, kTick, kEvent, kFirstBlock };

/// Everything that is decided about one job before it starts. Faults belong to a transfer by its number in job order.
struct Script {
    std::uint64_t seed = 0;
    ScriptedJob job = ScriptedJob::kForwardClone;
    std::size_t blockSize = 16;
    std::int64_t sourceBytes = 0;
    std::int64_t destinationBytes = 0; ///< of a drive
    std::int32_t sourceSector = 512;   ///< bytes; drives move whole sectors only
    std::int32_t destinationSector = 512;

    std::map<std::uint64_t, TransferFault> reads;  ///< of the source drive or the source image
    std::map<std::uint64_t, TransferFault> writes; ///< to the destination drive or the image
    std::map<std::uint64_t, TransferFault>
        flushes; ///< that fail or find the device gone: what they should store is lost
    std::map<std::uint64_t, TransferFault> verifyReads; ///< of the finished image
    std::map<std::uint64_t, TransferFault> rereads;     ///< of the destination drive
    std::map<std::uint64_t, bool> hashes;               ///< that fail, counted through imaging and verification

    bool sourceIsImageFile = false;            ///< a record of the drive list that stands for a file
    std::uint64_t sourceChangesAt = 1000;      ///< the n-th time that somebody asks, from 0
    std::uint64_t destinationChangesAt = 1000; ///< the same of the destination
    DiskChange clean = DiskChange::kMade;
    std::size_t mountedVolumes = 0; ///< on the destination, after the clean
    std::size_t mountedLater = 0;   ///< once its first block was to be written
    bool tableCannotBeRead = false; ///< the new one of the destination

    std::size_t takenImages = 0;    ///< numbers in a row whose image exists already
    std::size_t takenHashFiles = 0; ///< numbers behind those, whose hash file exists
    std::size_t takenRecords = 0;   ///< and behind those, whose record or whose map does
    std::size_t takenMaps = 0;
    std::size_t lostRaces = 0; ///< images that somebody else makes in the last moment
    bool imageCannotBeCreated = false;
    bool imageCannotBeOpened = false; ///< the source image, or the finished one
    bool imageCannotBeRewound = false;
    std::array<bool, 2> noProvider{}; ///< imaging, verification
    std::array<bool, 2> noHash{};
    std::array<bool, 2> noDigest{};
    bool hashFileCannotBeCreated = false;
    bool recordCannotBeWritten = false;
    bool mapCannotBeWritten = false;

    bool alsoSha256 = false;
    bool knowsMd5 = true;                       ///< of a verification; without it, its SHA-256 alone
    std::map<std::uint64_t, bool> sha256Hashes; ///< that fail, counted as `hashes` are
    std::array<bool, 2> noSha256Provider{};
    std::array<bool, 2> noSha256Hash{};
    std::array<bool, 2> noSha256Digest{};
    std::size_t takenSha256Files = 0; ///< numbers behind those of the hash files, whose SHA-256 file exists

    bool imageChangesMeanwhile = false; ///< between imaging and verification
    bool imageGoesMeanwhile = false;    ///< the source image, before the drive is compared with it
    bool verifyAfterwards = false;      ///< what was written to a drive is compared with its source
    std::size_t decayedBytes = 0;       ///< of the destination, at the end of its first half, before it is compared
    bool yes = true;                    ///< the answer to every question

    StopAt stopAt = StopAt::kNever;
    std::uint64_t stopNumber = 0; ///< the n-th read, write, hash, look at the clock or event, from 0

    std::int64_t millisecondsPerTick = 0;
    bool slowReads = false; ///< the threads' relative speeds
    bool slowWrites = false;
    bool slowHashes = false;
    bool slowFlushes = false;
};

/// Rolls the dice for one script; the same seed gives the same script on every machine.
class ScriptMaker {
  public:
    explicit ScriptMaker(std::uint64_t seed) : random_(seed * 0x9E3779B97F4A7C15ULL + 1) { script_.seed = seed; }

    [[nodiscard]] Script make() {
        script_.job = static_cast<ScriptedJob>(below(5));
        script_.blockSize = pick<std::size_t>({16, 16, 32, 48, 64, 40, 7});
        script_.sourceSector = sector();
        script_.destinationSector = chance(4) ? sector() : script_.sourceSector;
        script_.sourceBytes = size(script_.sourceSector);
        script_.destinationBytes = chance(2) ? script_.sourceBytes : size(script_.destinationSector);
        script_.millisecondsPerTick = pick<std::int64_t>({0, 1, 400, 1000, 7777, 100000});
        makeFaults();
        if (chance(12)) {
            makeRemainderTheEleventhBadBlock();
        }
        makeFileTroubles();
        makeDriveTroubles();
        makeStop();
        script_.slowReads = chance(3);
        script_.slowWrites = chance(3);
        script_.slowHashes = chance(3);
        makeFailedFlush();
        script_.sourceIsImageFile = chance(8);
        makeSha256();
        makeEvidenceTroubles();
        makeComparison();
        return script_;
    }

  private:
    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
    bool chance(std::uint64_t oneIn) { return below(oneIn) == 0; }

    template <typename Value>
    Value pick(const std::vector<Value>& values) {
        return values[below(values.size())];
    }

    // Blocks are whole sectors; now and then one is not, so that the drive refuses it.
    std::int32_t sector() {
        if (chance(30)) {
            return 512;
        }
        std::int32_t bytes = pick<std::int32_t>({16, 16, 8, 8, 4, 2, 1});
        while (script_.blockSize % static_cast<std::size_t>(bytes) != 0) {
            bytes /= 2;
        }
        return bytes;
    }

    // Around multiples of the block size: often enough blocks for eleven bad ones, now and then more than percents.
    // Drives are whole sectors, image files are not: now and then this one is meant to be neither.
    std::int64_t size(std::int32_t sector) {
        const auto blocks = static_cast<std::int64_t>(chance(20) ? 90 + below(200) : below(18));
        const auto block = static_cast<std::int64_t>(script_.blockSize);
        const std::int64_t extra = pick<std::int64_t>({0, 0, 1, -1, block / 2, static_cast<std::int64_t>(below(16))});
        const std::int64_t bytes = std::max<std::int64_t>(blocks * block + extra, 0);
        const bool odd = script_.job == ScriptedJob::kImageToDrive ? chance(2) : chance(8);
        return odd ? bytes : bytes / sector * sector;
    }

    TransferFault fault(bool mayFailToSeek) {
        const Fault kind = pick<Fault>({Fault::kFails, Fault::kShort, Fault::kSeekFails});
        if (kind == Fault::kSeekFails && !mayFailToSeek) {
            return {.fault = Fault::kFails, .part = 0};
        }
        return {.fault = kind, .part = below(script_.blockSize)};
    }

    void scatter(std::map<std::uint64_t, TransferFault>& faults, bool mayFailToSeek) {
        const std::uint64_t share = pick<std::uint64_t>({0, 0, 0, 5, 30, 90}); // percent
        for (std::uint64_t number = 0; number < 20; ++number) {
            if (below(100) < share) {
                faults[number] = fault(mayFailToSeek);
            }
        }
        // A device that has vanished comes back with nothing.
        if (chance(12)) {
            for (std::uint64_t number = below(18); number < 20; ++number) {
                faults[number] = {.fault = Fault::kGone, .part = 0};
            }
        }
    }

    void makeFaults() {
        const bool sourceIsDrive = script_.job != ScriptedJob::kImageToDrive;
        const bool destinationIsDrive =
            script_.job != ScriptedJob::kImageToFile && script_.job != ScriptedJob::kForensicImage;
        if (sourceIsDrive || chance(3)) {
            scatter(script_.reads, sourceIsDrive);
        }
        if (destinationIsDrive || chance(3)) {
            scatter(script_.writes, destinationIsDrive);
        }
        if (chance(6)) {
            for (std::uint64_t number = below(18); number < 20 && !chance(6); ++number) {
                script_.writes[number] = {.fault = Fault::kRefused, .part = 0};
            }
        }
        if (chance(4)) {
            script_.verifyReads[below(18)] = fault(false);
        }
        if (chance(4)) {
            script_.hashes[below(30)] = true;
        }
    }

    void makeRemainderTheEleventhBadBlock() {
        script_.sourceSector = script_.destinationSector = 1;
        script_.sourceBytes = static_cast<std::int64_t>(10 * script_.blockSize + 1 + below(script_.blockSize - 1));
        script_.destinationBytes = script_.sourceBytes;
        for (std::uint64_t number = 0; number < 11; ++number) {
            script_.reads[number] = {.fault = Fault::kFails, .part = below(script_.blockSize)};
        }
    }

    void makeFileTroubles() {
        script_.takenImages = chance(4) ? below(3) : 0;
        script_.takenHashFiles = chance(4) ? below(3) : 0;
        script_.lostRaces = chance(8) ? 1 + below(2) : 0;
        script_.imageCannotBeCreated = chance(20);
        script_.imageCannotBeOpened = chance(15);
        script_.imageCannotBeRewound = chance(20);
        for (std::size_t pass = 0; pass < 2; ++pass) {
            script_.noProvider[pass] = chance(20);
            script_.noHash[pass] = chance(20);
            script_.noDigest[pass] = chance(20);
        }
        script_.hashFileCannotBeCreated = chance(10);
        script_.imageChangesMeanwhile = chance(6);
        script_.yes = !chance(4);
    }

    void makeDriveTroubles() {
        if (chance(12)) {
            script_.sourceChangesAt = below(3);
        }
        if (chance(10)) {
            script_.destinationChangesAt = below(4);
        }
        if (chance(5)) {
            script_.clean = pick<DiskChange>(
                {DiskChange::kNotMade, DiskChange::kNotMade, DiskChange::kOtherDrive, DiskChange::kDriveLost});
        }
        script_.mountedVolumes = chance(2) ? 0 : below(4);
        script_.mountedLater = below(4);
        script_.tableCannotBeRead = chance(6);
    }

    void makeFailedFlush() {
        script_.slowFlushes = chance(3);
        if (chance(5)) {
            script_.flushes[below(4)] = {.fault = pick<Fault>({Fault::kFails, Fault::kGone}), .part = 0};
        }
    }

    void makeSha256() {
        script_.takenSha256Files = chance(4) ? below(3) : 0;
        script_.alsoSha256 = chance(2);
        if (script_.job == ScriptedJob::kImageToFile && chance(3)) {
            script_.job = ScriptedJob::kVerifyImage;
            script_.knowsMd5 = !script_.alsoSha256 || chance(2);
        }
        if (chance(4)) {
            script_.sha256Hashes[below(30)] = true;
        }
        for (std::size_t pass = 0; pass < 2; ++pass) {
            script_.noSha256Provider[pass] = chance(20);
            script_.noSha256Hash[pass] = chance(20);
            script_.noSha256Digest[pass] = chance(20);
        }
    }

    void makeEvidenceTroubles() {
        script_.takenRecords = chance(6) ? below(3) : 0;
        script_.takenMaps = chance(6) ? below(3) : 0;
        script_.recordCannotBeWritten = chance(15);
        script_.mapCannotBeWritten = chance(15);
    }

    void makeComparison() {
        script_.verifyAfterwards = chance(2);
        script_.imageGoesMeanwhile = chance(12);
        script_.decayedBytes = chance(4) ? 1 + below(2 * script_.blockSize) : 0;
        if (chance(4)) {
            script_.rereads[below(18)] = fault(true);
        }
        if (chance(8)) {
            script_.rereads[below(18)] = {.fault = Fault::kGone, .part = 0};
        }
        if (chance(4)) {
            script_.reads[20 + below(20)] = fault(script_.job != ScriptedJob::kImageToDrive);
        }
    }

    /// The number of the read that makes the eleventh bad block; a high number when there is none.
    [[nodiscard]] std::uint64_t eleventhBadRead() const {
        int bad = 0;
        for (const auto& [number, fault] : script_.reads) {
            bad += fault.fault == Fault::kSeekFails ? 0 : 1;
            if (bad == 11) {
                return number;
            }
        }
        return 1000;
    }

    void makeStop() {
        script_.stopAt = pick<StopAt>({StopAt::kNever, StopAt::kNever, StopAt::kWrite, StopAt::kTick, StopAt::kEvent});
        script_.stopNumber = script_.stopAt == StopAt::kEvent ? below(120) : below(20);
        if (script_.stopAt == StopAt::kWrite && chance(3)) {
            script_.stopNumber = eleventhBadRead();
        }
        // In the narrow gap between the last full block's own test and the remainder: the clock is looked at once
        // before the first block, and twice for each: when it was stored, and when it is shown.
        const auto fullBlocks = static_cast<std::uint64_t>(script_.sourceBytes) / script_.blockSize;
        if (script_.job == ScriptedJob::kForensicImage && fullBlocks > 0 && chance(4)) {
            script_.stopAt = StopAt::kTick;
            script_.stopNumber = 2 * fullBlocks;
            script_.imageChangesMeanwhile = chance(2);
        }
    }

    std::mt19937_64 random_;
    Script script_;
};

inline std::ostream& operator<<(std::ostream& out, const Script& script) {
    static constexpr std::array<const char*, 6> kJobs{"forward clone",  "reverse clone",  "image to file",
                                                      "forensic image", "image to drive", "verify image"};
    static constexpr std::array<const char*, 7> kStops{"never", "read",  "write",      "hash",
                                                       "tick",  "event", "first block"};
    return out << "script " << script.seed << ": " << kJobs[static_cast<std::size_t>(script.job)] << ", blocks of "
               << script.blockSize << ", source " << script.sourceBytes << ", destination " << script.destinationBytes
               << ", " << script.reads.size() << " bad reads, " << script.writes.size() << " bad writes, "
               << script.flushes.size() << " bad flushes, stop at " << kStops[static_cast<std::size_t>(script.stopAt)]
               << " " << script.stopNumber;
}

} // namespace torvane::testing
