#pragma once

#include "copy/evidence/map_file.h"
#include "copy/evidence/source_map.h"
#include "copy/rescue/rescue_pace.h"

#include <cstdint>
#include <optional>

namespace torvane {

/// Bytes of a rescue's larger reads, and multiples of which they end at.
inline constexpr std::uint64_t kRescueRead = 0x10000;

/// The largest read of all: in the midst of a large unreadable area, when the larger reads are nearly over.
inline constexpr std::uint64_t kLongestRescueRead = 0x100000;

struct RescueOptions {
    std::uint32_t sectorSize = 512; ///< bytes: the smallest read; a divisor of `kRescueRead`
    unsigned retryPasses = 0;       ///< over what could not be read, 0 to 9
    bool fromEnd = false;           ///< every pass goes the other way
};

/// Where a map comes from, and with it what its ranges mean.
struct RescueOrigin {
    /// A rescue has written it: its failed ranges have failed in reads no longer than a rescue's, and carry the
    /// unreadable marker in the copy.
    bool fromRescue = false;

    /// Where a rescue in the same direction has stopped, of which the map is.
    std::optional<MapStatus> place = std::nullopt;
};

/// What is to be read next.
struct RescueStep {
    std::uint64_t offset = 0; ///< bytes
    std::uint64_t length = 0; ///< bytes, all of one status: within a sector, or up to the ends of sectors
    RangeStatus phase = RangeStatus::kNonTried; ///< copying, trimming, scraping or retrying what has this status
    unsigned pass = 1;                          ///< within the phase, from 1

    bool operator==(const RescueStep&) const = default;
};

/// What a rescue reads when: first what is easy, with as few failed reads as possible. The order is that of GNU
/// ddrescue (its manual, "Algorithm"), so that a map which either of them has begun goes on with the other:
///
///   copying    what was never tried, in reads of 64 KiB. Pass 1 jumps on behind a failed read, farther with each in a
///              row, and away from areas that answer slowly. Pass 2 comes from the other side, and leaves an area for
///              another at its first failed read; so do passes 3 and 4, which take what is slow as well, if there is
///              any. Pass 5 reads whatever is left.
///   trimming   failed reads from both ends by sector, up to the first bad sector.
///   scraping   what lies between those, by sector.
///   retrying   every bad sector once in each pass.
///
/// The direction changes with each pass of copying and retrying. In pass 5 three failed reads in a row, and each that
/// follows, double the length of the next one up to 1 MiB: the midst of a dead area costs few reads until its sectors
/// have their turn. A step takes the logarithm of the number of ranges; nothing depends on the source's size.
///
/// A range of non-trimmed bytes larger than the longest read, in a map of which no rescue has told, comes of a copy
/// job, which gives a block up whole (`kCopyBlockSize`): nobody knows what in it can be read, so it counts as untried.
/// In a foreign rescue's map the like is the midst of a dead area, and costs one larger read for each 128 sectors or
/// more.
class RescuePlanner {
  public:
    /// Keeps the map and marks it as the reads end.
    RescuePlanner(SourceMap& map, const RescueOptions& options, const RescueOrigin& origin);

    /// The next read; none when all is done. Stays the same until that read has ended.
    [[nodiscard]] std::optional<RescueStep> next();

    /// The read has given everything, and it is in the copy.
    void hasRead(const RescueStep& step, std::int64_t milliseconds);

    /// The read has failed.
    void hasFailed(const RescueStep& step);

    /// Ranges have become untried behind the planner's back: whatever is left begins anew.
    void startOver();

    /// The map's status line.
    [[nodiscard]] MapStatus status() const;

  private:
    [[nodiscard]] bool isForwards() const;
    [[nodiscard]] std::uint64_t passStart() const;
    [[nodiscard]] std::optional<MappedRange> nearest(RangeStatus status, std::uint64_t from) const;
    [[nodiscard]] std::optional<RescueStep> nextOfPhase();
    [[nodiscard]] std::optional<RescueStep> nextTrim();
    [[nodiscard]] RescueStep edgeOf(const MappedRange& range, std::uint64_t longest, bool leading) const;
    [[nodiscard]] RescueStep nearEdgeOf(const MappedRange& range, std::uint64_t longest) const;
    [[nodiscard]] bool hasStatusAt(std::uint64_t offset, RangeStatus status) const;

    void enter(RangeStatus phase, unsigned pass);
    void goOn();
    void resumeAt(const MapStatus& place);
    void standAt(std::uint64_t place);
    void moveBeyond(const RescueStep& step);
    void jump(std::uint64_t& skip);
    void leaveArea();
    void readLonger();

    SourceMap& map_;
    RescueOptions options_;
    RescuePace pace_;

    RangeStatus phase_ = RangeStatus::kNonTried; ///< finished: all is done
    unsigned pass_ = 1;
    std::uint64_t position_ =
        0; ///< of copying and retrying: where the pass goes on, or its end when it comes from behind
    std::uint64_t firstSkip_ = 0;   ///< bytes of the first jump in a row
    std::uint64_t longestSkip_ = 0; ///< bytes
    std::uint64_t failureSkip_ = 0; ///< bytes of the next jump away from a failed read
    std::uint64_t slowSkip_ = 0;    ///< bytes of the next jump away from a slow area
    unsigned failuresInRow_ = 0;    ///< of the last copying pass
    std::uint64_t longest_ = 0;     ///< bytes of that pass's next read
    bool putOff_ = true;            ///< slow areas may have been left for passes 3 and 4
};

} // namespace torvane
