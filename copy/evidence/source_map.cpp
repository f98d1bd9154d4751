#include "copy/evidence/source_map.h"

#include <algorithm>
#include <iterator>

namespace torvane {

namespace {

std::size_t indexOf(RangeStatus status) {
    switch (status) {
    case RangeStatus::kNonTried:
        return 0;
    case RangeStatus::kNonTrimmed:
        return 1;
    case RangeStatus::kNonScraped:
        return 2;
    case RangeStatus::kBad:
        return 3;
    case RangeStatus::kFinished:
        break;
    }
    return 4;
}

} // namespace

SourceMap::SourceMap(std::uint64_t size) : size_(size) {
    if (size != 0) {
        ranges_[0] = RangeStatus::kNonTried;
        bytes_[indexOf(RangeStatus::kNonTried)] = size;
        starts_[indexOf(RangeStatus::kNonTried)] = {0};
    }
}

void SourceMap::mark(std::uint64_t offset, std::uint64_t length, RangeStatus status) {
    const std::uint64_t within = offset < size_ ? std::min(length, size_ - offset) : 0;
    if (within == 0) {
        return;
    }
    const auto first = splitAt(offset);
    const auto behind = splitAt(offset + within);
    for (auto range = first; range != behind; ++range) {
        bytes_[indexOf(range->second)] -= endOf(range) - range->first;
        starts_[indexOf(range->second)].erase(range->first);
    }
    ranges_.erase(std::next(first), behind);
    first->second = status;
    starts_[indexOf(status)].insert(offset);
    bytes_[indexOf(status)] += within;
    mergeWithNext(first);
    if (first != ranges_.begin()) {
        mergeWithNext(std::prev(first));
    }
}

RangeStatus SourceMap::statusAt(std::uint64_t offset) const {
    return offset < size_ ? std::prev(ranges_.upper_bound(offset))->second : RangeStatus::kNonTried;
}

std::vector<MappedRange> SourceMap::ranges() const {
    std::vector<MappedRange> all;
    all.reserve(ranges_.size());
    for (auto range = ranges_.begin(); range != ranges_.end(); ++range) {
        all.push_back({.offset = range->first, .length = endOf(range) - range->first, .status = range->second});
    }
    return all;
}

std::uint64_t SourceMap::bytes(RangeStatus status) const {
    return bytes_[indexOf(status)];
}

MappedRange SourceMap::rangeAt(std::uint64_t offset) const {
    const auto range = std::prev(ranges_.upper_bound(offset));
    return {.offset = range->first, .length = endOf(range) - range->first, .status = range->second};
}

std::optional<MappedRange> SourceMap::next(RangeStatus status, std::uint64_t from) const {
    if (from < size_ && statusAt(from) == status) {
        const MappedRange holding = rangeAt(from);
        return MappedRange{.offset = from, .length = holding.offset + holding.length - from, .status = status};
    }
    const Starts& starts = starts_[indexOf(status)];
    const auto first = starts.lower_bound(from);
    return first == starts.end() ? std::nullopt : std::optional(rangeAt(*first));
}

std::optional<MappedRange> SourceMap::previous(RangeStatus status, std::uint64_t end) const {
    const Starts& starts = starts_[indexOf(status)];
    const auto behind = starts.lower_bound(end);
    if (behind == starts.begin()) {
        return std::nullopt;
    }
    MappedRange last = rangeAt(*std::prev(behind));
    last.length = std::min(last.length, end - last.offset);
    return last;
}

std::size_t SourceMap::count(RangeStatus status) const {
    return starts_[indexOf(status)].size();
}

std::uint64_t SourceMap::endOf(Ranges::const_iterator range) const {
    const auto next = std::next(range);
    return next == ranges_.end() ? size_ : next->first;
}

/// The range that begins there, from now on; the end behind the last one.
SourceMap::Ranges::iterator SourceMap::splitAt(std::uint64_t offset) {
    const auto behind = ranges_.upper_bound(offset);
    if (offset == size_) {
        return behind;
    }
    const auto holding = std::prev(behind);
    if (holding->first == offset) {
        return holding;
    }
    starts_[indexOf(holding->second)].insert(offset);
    return ranges_.emplace_hint(behind, offset, holding->second);
}

void SourceMap::mergeWithNext(Ranges::iterator range) {
    const auto next = std::next(range);
    if (next != ranges_.end() && next->second == range->second) {
        starts_[indexOf(next->second)].erase(next->first);
        ranges_.erase(next);
    }
}

} // namespace torvane
