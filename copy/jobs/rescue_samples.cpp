#include "copy/jobs/rescue_samples.h"

#include "records/sector_size.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

namespace torvane {

namespace {

/// Where samples are looked for, in bytes.
std::set<std::uint64_t> samplePlaces(std::uint64_t size) {
    constexpr std::uint64_t kFirstStep = 65536;
    constexpr std::uint64_t kParts = 16;
    std::set<std::uint64_t> places{0};
    for (std::uint64_t place = kFirstStep; place < size; place *= 2) {
        places.insert(place);
    }
    for (std::uint64_t part = 1; part < kParts; ++part) {
        places.insert(size / kParts * part);
    }
    return places;
}

/// The first whole sector from a place on that the map calls finished.
std::optional<std::uint64_t> finishedSector(const SourceMap& map, std::uint64_t place, std::uint64_t sector) {
    while (const std::optional<MappedRange> range = map.next(RangeStatus::kFinished, place)) {
        const std::uint64_t begin = (std::max(place, range->offset) + sector - 1) / sector * sector;
        if (begin + sector <= range->offset + range->length) {
            return begin;
        }
        place = range->offset + range->length;
    }
    return std::nullopt;
}

/// The system may give a disk another signature (MBR, bytes 440 to 445).
void withoutSignature(std::uint64_t place, std::span<std::byte> bytes) {
    constexpr std::size_t kSignature = 440;
    constexpr std::size_t kLength = 6;
    if (place == 0) {
        std::ranges::fill(bytes.subspan(kSignature, kLength), std::byte{0});
    }
}

bool tellsAnything(std::span<const std::byte> bytes) {
    return std::ranges::any_of(bytes, [first = bytes.front()](std::byte each) { return each != first; });
}

/// Samples that could be compared.
struct SampleCounts {
    unsigned same = 0; ///< and tell anything
    unsigned other = 0;
};

constexpr unsigned kMostUnequal = 3;

SampleVerdict verdictOf(const SampleCounts& counts) {
    constexpr unsigned kFarMore = 4;
    if (counts.other == 0) {
        return counts.same != 0 ? SampleVerdict::kSame : SampleVerdict::kNotTold;
    }
    return counts.other <= kMostUnequal && counts.same >= kFarMore * counts.other ? SampleVerdict::kMostlySame
                                                                                  : SampleVerdict::kOther;
}

} // namespace

SampleVerdict compareSamples(const CopyJob& job, RescueDrive& drive, const SourceMap& map, const CopyReader& readCopy) {
    const std::uint64_t sector = sectorSizeOf(*job.order.source);
    std::vector<std::byte> wanted(sector);
    std::vector<std::byte> found(sector);
    std::optional<std::uint64_t> last;
    if (map.bytes(RangeStatus::kFinished) == 0) {
        return SampleVerdict::kSame;
    }
    SampleCounts counts;
    for (const std::uint64_t around : samplePlaces(map.size())) {
        const std::optional<std::uint64_t> place = finishedSector(map, around, sector);
        if (!place || place == last) {
            continue;
        }
        last = place;
        const SourceAnswer answer = drive.read(*place, wanted, [&] { return job.claim.isRaised(); });
        if (answer == SourceAnswer::kGone || answer == SourceAnswer::kLeft) {
            return SampleVerdict::kGone;
        }
        if (answer == SourceAnswer::kFailed) {
            continue;
        }
        const bool isRead = readCopy(*place, found);
        withoutSignature(*place, wanted);
        withoutSignature(*place, found);
        if (!isRead || wanted != found) {
            if (++counts.other > kMostUnequal) {
                break;
            }
        } else {
            counts.same += tellsAnything(wanted) ? 1 : 0;
        }
    }
    return verdictOf(counts);
}

} // namespace torvane
