#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace torvane {

/// What became of a part of a source. The values are the characters of GNU ddrescue's map file (its manual, "Mapfile
/// structure").
enum class RangeStatus : char {
    kNonTried = '?',   ///< not in the copy
    kNonTrimmed = '*', ///< a larger read failed as a whole; what of it can be read is not known
    kNonScraped = '/', ///< the same, with its readable edges cut off
    kBad = '-',        ///< read by itself, and failed
    kFinished = '+',   ///< in the copy
};

/// Bytes from the start of the source.
struct MappedRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    RangeStatus status = RangeStatus::kNonTried;

    bool operator==(const MappedRange&) const = default;
};

/// What became of each byte of a source: ranges that cover it whole, in order, no two neighbours of the same status.
class SourceMap {
  public:
    /// Of so many bytes, none of them tried.
    explicit SourceMap(std::uint64_t size = 0);

    [[nodiscard]] std::uint64_t size() const { return size_; }

    /// What lies behind the source's end is left out. Takes the logarithm of the number of ranges, and the ranges that
    /// it replaces.
    void mark(std::uint64_t offset, std::uint64_t length, RangeStatus status);

    /// Of a place within the source; what lies behind it was never tried.
    [[nodiscard]] RangeStatus statusAt(std::uint64_t offset) const;
    [[nodiscard]] std::vector<MappedRange> ranges() const;
    [[nodiscard]] std::uint64_t bytes(RangeStatus status) const;

    // These take the logarithm of the number of ranges.

    /// The range that a place within the source lies in.
    [[nodiscard]] MappedRange rangeAt(std::uint64_t offset) const;
    /// What lies at or behind `from` of the first range of that status that reaches there.
    [[nodiscard]] std::optional<MappedRange> next(RangeStatus status, std::uint64_t from) const;
    /// What lies before `end` of the last range of that status that reaches there.
    [[nodiscard]] std::optional<MappedRange> previous(RangeStatus status, std::uint64_t end) const;
    [[nodiscard]] std::size_t count(RangeStatus status) const;

  private:
    using Ranges = std::map<std::uint64_t, RangeStatus>; ///< by their first byte; each ends where the next one begins

    using Starts = std::set<std::uint64_t>;
    static constexpr std::size_t kStatusCount = 5;

    [[nodiscard]] std::uint64_t endOf(Ranges::const_iterator range) const;
    Ranges::iterator splitAt(std::uint64_t offset);
    void mergeWithNext(Ranges::iterator range);

    std::uint64_t size_;
    Ranges ranges_;
    std::array<std::uint64_t, kStatusCount> bytes_{};
    std::array<Starts, kStatusCount> starts_; ///< the first bytes of the ranges of each status
};

} // namespace torvane
