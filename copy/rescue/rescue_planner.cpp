#include "copy/rescue/rescue_planner.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr unsigned kDelimitingPass = 2; // the last one that jumps away from slow areas
constexpr unsigned kLastCopyingPass = 5;

constexpr std::uint64_t kFirstSkipPart = 100'000; // of the source
constexpr std::uint64_t kLongestSkipPart = 100;   // of the source

constexpr unsigned kFailuresOfADeadArea = 3; // in a row

std::uint64_t upTo(std::uint64_t place, std::uint64_t multiple) {
    return (place + multiple - 1) / multiple * multiple;
}

/// Non-trimmed ranges that were never read in reads as short as these become untried. True when there were any.
bool forgetBlocks(SourceMap& map) {
    bool any = false;
    std::uint64_t from = 0;
    while (const auto range = map.next(RangeStatus::kNonTrimmed, from)) {
        from = range->offset + range->length;
        if (range->length > kLongestRescueRead) {
            map.mark(range->offset, range->length, RangeStatus::kNonTried);
            any = true;
        }
    }
    return any;
}

} // namespace

RescuePlanner::RescuePlanner(SourceMap& map, const RescueOptions& options, const RescueOrigin& origin)
    : map_(map), options_(options),
      firstSkip_(std::max(upTo(map.size() / kFirstSkipPart, options.sectorSize), kRescueRead)),
      longestSkip_(std::max(upTo(map.size() / kLongestSkipPart, options.sectorSize), firstSkip_)) {
    const bool forgotten = !origin.fromRescue && forgetBlocks(map_);
    startOver();
    if (origin.place && !forgotten) {
        resumeAt(*origin.place);
    }
}

void RescuePlanner::startOver() {
    putOff_ = false;
    enter(RangeStatus::kNonTried, 1);
}

/// Passes of copying and retrying go on where they were; trimming and scraping know by the map what is left.
void RescuePlanner::resumeAt(const MapStatus& place) {
    const bool copying = map_.bytes(RangeStatus::kNonTried) != 0;
    const bool retrying =
        !copying && map_.bytes(RangeStatus::kNonTrimmed) == 0 && map_.bytes(RangeStatus::kNonScraped) == 0;
    if (copying && place.phase == '?' && place.pass <= kLastCopyingPass) {
        enter(RangeStatus::kNonTried, place.pass);
        standAt(place.position);
        putOff_ = true; // nobody has told
    } else if (retrying && place.phase == '-' && place.pass <= options_.retryPasses) {
        enter(RangeStatus::kBad, place.pass);
        standAt(place.position);
    }
}

/// No sector is begun in its middle, whatever a map tells.
void RescuePlanner::standAt(std::uint64_t place) {
    const std::uint64_t within = std::min(place, map_.size());
    const std::uint64_t begin = within - within % options_.sectorSize;
    position_ = isForwards() || begin == within ? begin : std::min(begin + options_.sectorSize, map_.size());
}

std::optional<RescueStep> RescuePlanner::next() {
    while (phase_ != RangeStatus::kFinished) {
        if (const auto step = nextOfPhase()) {
            return step;
        }
        goOn();
    }
    return std::nullopt;
}

void RescuePlanner::hasRead(const RescueStep& step, std::int64_t milliseconds) {
    map_.mark(step.offset, step.length, RangeStatus::kFinished);
    moveBeyond(step);
    failureSkip_ = firstSkip_;
    failuresInRow_ = 0;
    longest_ = kRescueRead;
    if (phase_ != RangeStatus::kNonTried) {
        return;
    }
    const RescuePace::Verdict pace = pace_.judge(step.length, milliseconds);
    if (pace == RescuePace::Verdict::kUsual) {
        slowSkip_ = firstSkip_;
    } else if (pace == RescuePace::Verdict::kSlow && pass_ <= kDelimitingPass) {
        putOff_ = true;
        jump(slowSkip_);
    }
}

void RescuePlanner::hasFailed(const RescueStep& step) {
    const bool copying = phase_ == RangeStatus::kNonTried;
    map_.mark(step.offset, step.length, copying ? RangeStatus::kNonTrimmed : RangeStatus::kBad);
    moveBeyond(step);
    if (!copying) {
        return;
    }
    if (pass_ == 1) {
        jump(failureSkip_);
    } else if (pass_ < kLastCopyingPass) {
        leaveArea();
    } else {
        readLonger();
    }
}

MapStatus RescuePlanner::status() const {
    MapStatus status{.position = position_, .phase = static_cast<char>(phase_), .pass = pass_};
    if (phase_ == RangeStatus::kNonTrimmed || phase_ == RangeStatus::kNonScraped) {
        const auto range = nearest(phase_, isForwards() ? 0 : map_.size());
        status.position = !range ? position_ : isForwards() ? range->offset : range->offset + range->length;
    }
    return status;
}

bool RescuePlanner::isForwards() const {
    const bool everyOther = phase_ == RangeStatus::kNonTried || phase_ == RangeStatus::kBad;
    return (everyOther && pass_ % 2 == 0) == options_.fromEnd;
}

std::uint64_t RescuePlanner::passStart() const {
    return isForwards() ? 0 : map_.size();
}

/// The part of the next range of that status that the pass comes to from there.
std::optional<MappedRange> RescuePlanner::nearest(RangeStatus status, std::uint64_t from) const {
    return isForwards() ? map_.next(status, from) : map_.previous(status, from);
}

std::optional<RescueStep> RescuePlanner::nextOfPhase() {
    if (phase_ == RangeStatus::kNonTrimmed) {
        return nextTrim();
    }
    // What was scraped has another status, so that scraping goes on with whatever is left.
    const bool scraping = phase_ == RangeStatus::kNonScraped;
    const auto range = nearest(phase_, scraping ? passStart() : position_);
    if (!range) {
        return std::nullopt;
    }
    return nearEdgeOf(*range, phase_ == RangeStatus::kNonTried ? longest_ : options_.sectorSize);
}

/// An edge beside a bad sector was trimmed: what lies between two such edges is left to scraping.
std::optional<RescueStep> RescuePlanner::nextTrim() {
    while (const auto range = nearest(RangeStatus::kNonTrimmed, passStart())) {
        const bool leadingLeft = range->offset == 0 || !hasStatusAt(range->offset - 1, RangeStatus::kBad);
        const bool trailingLeft = !hasStatusAt(range->offset + range->length, RangeStatus::kBad);
        if (leadingLeft || trailingLeft) {
            const bool leading = isForwards() ? leadingLeft : !trailingLeft;
            return edgeOf(*range, options_.sectorSize, leading);
        }
        map_.mark(range->offset, range->length, RangeStatus::kNonScraped);
    }
    return std::nullopt;
}

/// The first or last bytes of a range, as far as the next multiple of `longest`.
RescueStep RescuePlanner::edgeOf(const MappedRange& range, std::uint64_t longest, bool leading) const {
    RescueStep step{.offset = range.offset, .length = range.length, .phase = phase_, .pass = pass_};
    const std::uint64_t end = range.offset + range.length;
    if (leading) {
        step.length = std::min(range.length, longest - range.offset % longest);
    } else {
        step.offset = std::max(range.offset, (end - 1) / longest * longest);
        step.length = end - step.offset;
    }
    return step;
}

RescueStep RescuePlanner::nearEdgeOf(const MappedRange& range, std::uint64_t longest) const {
    return edgeOf(range, longest, isForwards());
}

bool RescuePlanner::hasStatusAt(std::uint64_t offset, RangeStatus status) const {
    return offset < map_.size() && map_.statusAt(offset) == status;
}

void RescuePlanner::enter(RangeStatus phase, unsigned pass) {
    phase_ = phase;
    pass_ = pass;
    position_ = passStart();
    failureSkip_ = firstSkip_;
    slowSkip_ = firstSkip_;
    failuresInRow_ = 0;
    longest_ = kRescueRead;
    pace_.moveAway();
}

/// To the next pass or phase. Where nothing of a phase is left, the next call comes at once.
void RescuePlanner::goOn() {
    if (phase_ == RangeStatus::kNonTried && map_.bytes(RangeStatus::kNonTried) != 0) {
        const bool last = pass_ >= kLastCopyingPass || (pass_ == kDelimitingPass && !putOff_);
        enter(RangeStatus::kNonTried, last ? kLastCopyingPass : pass_ + 1);
    } else if (phase_ == RangeStatus::kNonTried) {
        enter(RangeStatus::kNonTrimmed, 1);
    } else if (phase_ == RangeStatus::kNonTrimmed) {
        enter(RangeStatus::kNonScraped, 1);
    } else {
        const unsigned pass = phase_ == RangeStatus::kBad ? pass_ + 1 : 1;
        const bool again = pass <= options_.retryPasses && map_.bytes(RangeStatus::kBad) != 0;
        enter(again ? RangeStatus::kBad : RangeStatus::kFinished, again ? pass : 1);
    }
}

void RescuePlanner::moveBeyond(const RescueStep& step) {
    position_ = isForwards() ? step.offset + step.length : step.offset;
}

/// Away from a bad place, and next time twice as far.
void RescuePlanner::jump(std::uint64_t& skip) {
    position_ =
        isForwards() ? position_ + std::min(skip, map_.size() - position_) : position_ - std::min(skip, position_);
    skip = std::min(skip * 2, longestSkip_);
    pace_.moveAway();
}

/// To the other end of what is left of the range in which a read failed.
void RescuePlanner::leaveArea() {
    const std::uint64_t beside = isForwards() ? position_ : position_ - 1; // below 0: behind the source's end
    if (hasStatusAt(beside, RangeStatus::kNonTried)) {
        const MappedRange left = map_.rangeAt(beside);
        position_ = isForwards() ? left.offset + left.length : left.offset;
    }
    pace_.moveAway();
}

void RescuePlanner::readLonger() {
    ++failuresInRow_;
    if (failuresInRow_ >= kFailuresOfADeadArea) {
        longest_ = std::min(longest_ * 2, kLongestRescueRead);
    }
}

} // namespace torvane
