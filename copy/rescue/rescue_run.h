#pragma once

#include "copy/evidence/source_map.h"
#include "copy/rescue/rescue_planner.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// How a read of the source ended.
enum class SourceAnswer : std::uint8_t {
    kWhole,  ///< every byte was read
    kFailed, ///< it failed or came back short
    kGone,   ///< likewise, and the drive is not there any more
    kLeft,   ///< it did not come back, and nobody waits for it any longer: the drive has to be opened anew
};

/// The drive that is rescued, or an image file in its place.
class RescueSource {
  public:
    virtual ~RescueSource() = default;

    /// Fills the whole span. Place and length are multiples of the sector size; the last sector alone may be cut off at
    /// the source's end.
    [[nodiscard]] virtual SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes) = 0;

    /// Waits until the same drive is back. False: the rescue is to end instead.
    [[nodiscard]] virtual bool awaitReturn() = 0;
};

/// The image, or the drive that the source is rescued to.
class RescueTarget {
  public:
    virtual ~RescueTarget() = default;

    /// Writes all bytes. Whole sectors, where the map that the rescue began with has ranges of whole sectors alone
    /// (`hasWholeSectors`).
    [[nodiscard]] virtual bool write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;

    /// Brings everything that was written onto the medium.
    [[nodiscard]] virtual bool flush() = 0;
};

/// What a window shows of a rescue. Bytes of the source, times in milliseconds.
struct RescueFigures {
    std::uint64_t rescued = 0;
    std::uint64_t missing = 0; ///< a read of it has failed, and its sectors have not all had their turn
    std::uint64_t bad = 0;     ///< sectors that could not be read by themselves
    std::uint64_t untried = 0;
    std::uint64_t badAreas = 0;       ///< how many ranges of bad sectors
    std::uint64_t bytesPerSecond = 0; ///< rescued in the last ten seconds
    std::uint64_t reads = 0;
    std::uint64_t failedReads = 0;
    std::int64_t slowestRead = 0;
    std::int64_t sinceGoodRead = 0; ///< since the start, when there was none
    RescueStep step;                ///< the read that has just ended

    bool operator==(const RescueFigures&) const = default;
};

/// Who has the rescue done.
class RescueWatch {
  public:
    virtual ~RescueWatch() = default;

    /// False: the rescue stops before its next read.
    [[nodiscard]] virtual bool isWanted() = 0;

    /// Milliseconds since any start that stays the same.
    [[nodiscard]] virtual std::int64_t now() = 0;

    /// Saves the map, as a whole or not at all (`rescueMapText`). What it has as finished is on the target's medium.
    [[nodiscard]] virtual bool saveMap(const SourceMap& map, const MapStatus& status) = 0;

    /// After each read: called as often as thousands of times in a second.
    virtual void show(const RescueFigures& figures, const SourceMap& map) = 0;
};

enum class RescueEnding : std::uint8_t {
    kFinished,    ///< every sector has had its turns
    kStopped,     ///< it was not wanted any longer
    kSourceLeft,  ///< the source went, and was not waited for
    kWriteFailed, ///< the target did not take what was written
};

struct RescueResult {
    RescueEnding ending = RescueEnding::kFinished;
    bool mapSaved = false; ///< the map as it is now; otherwise the one saved before counts, and costs what came since
    RescueFigures figures;
};

/// Milliseconds between two savings of the map.
inline constexpr std::int64_t kRescueSaveInterval = 30'000;

/// Bytes of memory that a rescue reads into and writes from.
inline constexpr std::size_t kRescueBuffer = kLongestRescueRead + kRescueRead;

/// True when no range of the map ends within a sector, but the last one at the source's end.
[[nodiscard]] bool hasWholeSectors(const SourceMap& map, std::uint32_t sectorSize);

/// Reads what the map has as missing into the target and marks the map.
///
/// The order is: write, mark, and after half a minute and at each stop: flush, save. So
///   - a saved map calls finished only what a flush has brought onto the target's medium; a power loss costs what came
///     since the last saving, which is read once more;
///   - a flush that fails makes everything since the last good one untried again and ends the rescue;
///   - nothing finished is read or written again. (A sector of which a foreign map has a part as finished is read as a
///     whole; that part is not written.)
///
/// What a read has failed on gets the unreadable marker in the target before the map has it as failed. Thus in a map
/// that a rescue has saved every failed place has its marker, however the run has ended, and nothing is left to do at
/// its end. A map that comes from elsewhere promises none (another program leaves what was there), so that its failed
/// places get theirs first. What was never tried stays as it is: a hole or zeros in a new image, what an earlier copy
/// has left there in its image.
///
/// A drive that goes is waited for, and the read made again; where it goes a second time in a row, the place counts as
/// failed, and so does one of which a larger read never came back; a sector of which one did not has its turn again.
///
/// `buffer` holds what is read and what is written: `kRescueBuffer` bytes, aligned as source and target demand it.
[[nodiscard]] RescueResult runRescue(SourceMap& map, const RescueOptions& options, const RescueOrigin& origin,
                                     RescueSource& source, RescueTarget& target, RescueWatch& watch,
                                     std::span<std::byte> buffer);

} // namespace torvane
