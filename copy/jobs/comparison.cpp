#include "copy/jobs/comparison.h"

#include "base/format.h"
#include "copy/jobs/clauses.h"

#include <cinttypes>

namespace torvane {

bool isEqual(const Comparison& comparison) {
    const bool foundAny = comparison.compared != 0 || comparison.lost == 0;
    return comparison.end == ComparisonEnd::kWhole && comparison.differing == 0 && comparison.unreadable == 0 &&
           foundAny;
}

bool isRefuted(const std::optional<Comparison>& comparison) {
    return comparison && !isEqual(*comparison);
}

std::string comparisonInWords(const Comparison& comparison, std::uint64_t sectorSize) {
    std::string text = isEqual(comparison) ? "verified" : "";
    addCount(text, comparison.differing, "block differs", "blocks differ");
    if (comparison.firstDifference) {
        text += formatText(", the first at sector %" PRIu64, *comparison.firstDifference / sectorSize);
    }
    addCount(text, comparison.unreadable, "block could not be read again", "blocks could not be read again");
    addCount(text, comparison.lost, "unreadable block left out", "unreadable blocks left out");
    if (comparison.end != ComparisonEnd::kWhole) {
        const bool stopped = comparison.end == ComparisonEnd::kStopped;
        addCount(text, comparison.compared, "block was compared", "blocks were compared");
        text.insert(0, text.empty() ? "" : ": ").insert(0, stopped ? "verification stopped" : "verification failed");
    }
    return text;
}

} // namespace torvane
