#include "copy/rescue/rescue_run.h"

#include "copy/engine/block_layout.h"
#include "copy/engine/run_meter.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace torvane {

namespace {

/// Places in the target that were written since they were last known to be on its medium.
class UnflushedPlaces {
  public:
    void add(std::uint64_t offset, std::uint64_t length) {
        if (!places_.empty() && places_.back().offset + places_.back().length == offset) {
            places_.back().length += length;
        } else {
            places_.push_back({.offset = offset, .length = length});
        }
    }

    void clear() { places_.clear(); }

    [[nodiscard]] const std::vector<MappedRange>& all() const { return places_; }

  private:
    std::vector<MappedRange> places_;
};

class Rescue {
  public:
    Rescue(SourceMap& map, const RescueOptions& options, const RescueOrigin& origin, RescueSource& source,
           RescueTarget& target, RescueWatch& watch, std::span<std::byte> buffer)
        : map_(map), sectorSize_(options.sectorSize), planner_(map, options, origin),
          markersMissing_(!origin.fromRescue), source_(source), target_(target), watch_(watch),
          buffer_(buffer.first(kLongestRescueRead)), marker_(buffer.subspan(kLongestRescueRead, kRescueRead)),
          meter_(watch.now()), rescuedBefore_(map.bytes(RangeStatus::kFinished)), lastSave_(watch.now()),
          lastGood_(lastSave_) {
        fillWithUnreadableMarker(marker_);
    }

    RescueResult run() {
        if (markersMissing_ && !markFailedPlaces()) {
            // The map that is there stays true, and goes on saying that it promises no markers.
            return {.ending = watch_.isWanted() ? RescueEnding::kWriteFailed : RescueEnding::kStopped,
                    .mapSaved = true,
                    .figures = figures()};
        }
        // The map lies beside its target from the first moment on.
        RescueEnding ending = checkpoint() ? readOn() : RescueEnding::kWriteFailed;
        if (!checkpoint()) {
            ending = RescueEnding::kWriteFailed;
        }
        return {.ending = ending, .mapSaved = saved_, .figures = figures()};
    }

  private:
    struct Read {
        SourceAnswer answer;
        std::int64_t milliseconds;
    };

    RescueEnding readOn() {
        while (const auto step = planner_.next()) {
            if (!watch_.isWanted()) {
                return RescueEnding::kStopped;
            }
            const Read read = readStep(*step);
            const bool gone = read.answer == SourceAnswer::kGone || read.answer == SourceAnswer::kLeft;
            if (counts(*step, read.answer) && !settle(*step, read)) {
                return RescueEnding::kWriteFailed;
            }
            watch_.show(figures(), map_);
            if ((gone || watch_.now() - lastSave_ >= kRescueSaveInterval) && !checkpoint()) {
                return RescueEnding::kWriteFailed;
            }
            if (gone && !source_.awaitReturn()) {
                return RescueEnding::kSourceLeft;
            }
        }
        return RescueEnding::kFinished;
    }

    Read readStep(const RescueStep& step) {
        const std::int64_t begun = watch_.now();
        const BlockExtent sectors = sectorsOf(step);
        const SourceAnswer answer = source_.read(sectors.offset, buffer_.first(sectors.length));
        const std::int64_t ended = watch_.now();
        shown_.step = step;
        ++shown_.reads;
        shown_.failedReads += answer == SourceAnswer::kWhole ? 0 : 1;
        shown_.slowestRead = std::max(shown_.slowestRead, ended - begun);
        lastGood_ = answer == SourceAnswer::kWhole ? ended : lastGood_;
        return {.answer = answer, .milliseconds = ended - begun};
    }

    /// The whole sectors that hold what is to be read.
    [[nodiscard]] BlockExtent sectorsOf(const RescueStep& step) const {
        const std::uint64_t begin = step.offset / sectorSize_ * sectorSize_;
        const std::uint64_t end = (step.offset + step.length + sectorSize_ - 1) / sectorSize_ * sectorSize_;
        return {.offset = begin, .length = static_cast<std::size_t>(std::min(end, map_.size()) - begin)};
    }

    /// False for a read that is made again, because the drive went and this may be none of the place's doing.
    bool counts(const RescueStep& step, SourceAnswer answer) {
        const bool first = answer == SourceAnswer::kGone && goneAt_ != step;
        goneAt_ = first ? std::optional(step) : std::nullopt;
        return !first;
    }

    /// Brings what a read has given into target and map. False when the target did not take it.
    bool settle(const RescueStep& step, const Read& read) {
        if (read.answer == SourceAnswer::kWhole) {
            if (!write(step.offset, buffer_.subspan(step.offset - sectorsOf(step).offset, step.length))) {
                return false;
            }
            planner_.hasRead(step, read.milliseconds);
            meter_.count(watch_.now(), map_.bytes(RangeStatus::kFinished) - rescuedBefore_);
            return true;
        }
        if (read.answer == SourceAnswer::kLeft && step.phase != RangeStatus::kNonTried) {
            return true; // nobody has waited for what it gives: it has its turn again
        }
        // What has failed before has its marker.
        if (step.phase == RangeStatus::kNonTried && !writeMarker(step.offset, step.length)) {
            return false;
        }
        planner_.hasFailed(step);
        return true;
    }

    bool write(std::uint64_t offset, std::span<const std::byte> bytes) {
        if (target_.write(offset, bytes)) {
            unflushed_.add(offset, bytes.size());
            return true;
        }
        // Nobody knows what the target has there now.
        map_.mark(offset, bytes.size(), RangeStatus::kNonTried);
        planner_.startOver();
        return false;
    }

    bool writeMarker(std::uint64_t offset, std::uint64_t length) {
        while (length != 0) {
            const std::uint64_t piece = std::min<std::uint64_t>(length, marker_.size());
            if (!write(offset, marker_.first(piece))) {
                return false;
            }
            offset += piece;
            length -= piece;
        }
        return true;
    }

    bool markFailedPlaces() {
        for (const RangeStatus status : {RangeStatus::kNonTrimmed, RangeStatus::kNonScraped, RangeStatus::kBad}) {
            std::uint64_t from = 0;
            while (const auto range = map_.next(status, from)) {
                const std::uint64_t begin = std::max(from, range->offset);
                const std::uint64_t end =
                    std::min<std::uint64_t>(range->offset + range->length, begin + marker_.size());
                if (!watch_.isWanted() || !writeMarker(begin, end - begin)) {
                    return false;
                }
                from = end;
            }
        }
        return true;
    }

    /// Target first, then map. False when the target has not kept what was written.
    bool checkpoint() {
        const bool flushed = target_.flush();
        if (!flushed) {
            forgetUnflushed();
        }
        unflushed_.clear();
        saved_ = watch_.saveMap(map_, planner_.status());
        lastSave_ = watch_.now();
        return flushed;
    }

    void forgetUnflushed() {
        for (const MappedRange& place : unflushed_.all()) {
            map_.mark(place.offset, place.length, RangeStatus::kNonTried);
        }
        planner_.startOver();
    }

    [[nodiscard]] RescueFigures figures() {
        const std::int64_t now = watch_.now();
        shown_.rescued = map_.bytes(RangeStatus::kFinished);
        shown_.missing = map_.bytes(RangeStatus::kNonTrimmed) + map_.bytes(RangeStatus::kNonScraped);
        shown_.bad = map_.bytes(RangeStatus::kBad);
        shown_.untried = map_.bytes(RangeStatus::kNonTried);
        shown_.badAreas = map_.count(RangeStatus::kBad);
        shown_.bytesPerSecond = meter_.bytesPerSecond(now);
        shown_.sinceGoodRead = now - lastGood_;
        return shown_;
    }

    SourceMap& map_;
    std::uint64_t sectorSize_;
    RescuePlanner planner_;
    bool markersMissing_;
    RescueSource& source_;
    RescueTarget& target_;
    RescueWatch& watch_;
    std::span<std::byte> buffer_;
    std::span<std::byte> marker_; ///< filled with the unreadable marker
    UnflushedPlaces unflushed_;
    RunMeter meter_;
    std::uint64_t rescuedBefore_; ///< bytes, by others
    std::int64_t lastSave_;
    std::int64_t lastGood_;
    bool saved_ = false;
    std::optional<RescueStep> goneAt_; ///< the read with which the drive has just gone
    RescueFigures shown_;
};

} // namespace

bool hasWholeSectors(const SourceMap& map, std::uint32_t sectorSize) {
    return std::ranges::all_of(map.ranges(), [&](const MappedRange& range) { return range.offset % sectorSize == 0; });
}

RescueResult runRescue(SourceMap& map, const RescueOptions& options, const RescueOrigin& origin, RescueSource& source,
                       RescueTarget& target, RescueWatch& watch, std::span<std::byte> buffer) {
    return Rescue(map, options, origin, source, target, watch, buffer).run();
}

} // namespace torvane
