#include "copy/evidence/source_map.h"

#include <algorithm>
#include <iterator>

namespace torvane {

SourceMap::SourceMap(std::uint64_t size) : size_(size) {
    if (size != 0) {
        ranges_[0] = RangeStatus::kNonTried;
        bytes_[RangeStatus::kNonTried] = size;
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
        bytes_[range->second] -= endOf(range) - range->first;
    }
    ranges_.erase(std::next(first), behind);
    first->second = status;
    bytes_[status] += within;
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
    const auto found = bytes_.find(status);
    return found == bytes_.end() ? 0 : found->second;
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
    return holding->first == offset ? holding : ranges_.emplace_hint(behind, offset, holding->second);
}

void SourceMap::mergeWithNext(Ranges::iterator range) {
    const auto next = std::next(range);
    if (next != ranges_.end() && next->second == range->second) {
        ranges_.erase(next);
    }
}

} // namespace torvane
