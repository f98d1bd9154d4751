#include "copy/jobs/rescue_samples.h"

#include "records/sector_size.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace torvane {

namespace {

/// Where samples are looked for, in bytes.
std::set<std::uint64_t> samplePlaces(std::uint64_t size, std::uint64_t sector) {
    constexpr std::uint64_t kFirstStep = 65536;
    constexpr std::uint64_t kParts = 16;
    std::set<std::uint64_t> places{0};
    for (std::uint64_t place = kFirstStep; place < size; place *= 2) {
        places.insert(place);
    }
    for (std::uint64_t part = 1; part < kParts; ++part) {
        places.insert(size / kParts * part);
    }
    if (size >= sector) {
        places.insert((size / sector - 1) * sector); // where a GPT has its second header
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

constexpr std::size_t kMostUnequal = 3;

/// `same`: sectors that agree and tell anything.
SampleVerdict verdictOf(std::size_t same, const std::vector<std::uint64_t>& unequal) {
    constexpr std::size_t kFarMore = 4;
    if (unequal.empty()) {
        return same != 0 ? SampleVerdict::kSame : SampleVerdict::kNotTold;
    }
    const bool mostly = unequal.front() != 0 && unequal.size() <= kMostUnequal && same >= kFarMore * unequal.size();
    return mostly ? SampleVerdict::kMostlySame : SampleVerdict::kOther;
}

} // namespace

Samples compareSamples(const CopyJob& job, RescueDrive& drive, const SourceMap& map, const CopyReader& readCopy) {
    const std::uint64_t sector = sectorSizeOf(*job.order.source);
    std::vector<std::byte> wanted(sector);
    std::vector<std::byte> found(sector);
    std::optional<std::uint64_t> last;
    if (map.bytes(RangeStatus::kFinished) == 0) {
        return {};
    }
    std::size_t same = 0;
    std::vector<std::uint64_t> unequal;
    for (const std::uint64_t around : samplePlaces(map.size(), sector)) {
        const std::optional<std::uint64_t> place = finishedSector(map, around, sector);
        if (!place || place == last) {
            continue;
        }
        last = place;
        const SourceAnswer answer = drive.read(*place, wanted, [&] { return job.claim.isRaised(); });
        if (answer == SourceAnswer::kGone || answer == SourceAnswer::kLeft) {
            return {.verdict = SampleVerdict::kGone, .unequal = {}};
        }
        if (answer == SourceAnswer::kFailed) {
            continue;
        }
        const bool isRead = readCopy(*place, found);
        withoutSignature(*place, wanted);
        withoutSignature(*place, found);
        if (!isRead || wanted != found) {
            unequal.push_back(*place);
        } else {
            same += tellsAnything(wanted) ? 1 : 0;
        }
        if (unequal.size() > kMostUnequal) {
            break;
        }
    }
    const SampleVerdict verdict = verdictOf(same, unequal);
    return {.verdict = verdict, .unequal = std::move(unequal)};
}

} // namespace torvane
