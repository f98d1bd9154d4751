#include "copy/jobs/rescue_words.h"

#include "base/format.h"
#include "copy/jobs/clauses.h"
#include "copy/jobs/run_figures.h"
#include "copy/jobs/size_units.h"

#include <cinttypes>

namespace torvane {

namespace {

void addAmount(std::string& text, const char* what, std::uint64_t bytes) {
    if (bytes != 0) {
        addClause(text, std::string(what).append(" ").append(sizeInWords(bytes)));
    }
}

std::string secondsInWords(std::int64_t milliseconds) {
    return formatText("%.1f s", static_cast<double>(milliseconds) / 1000);
}

} // namespace

std::string rescueStepInWords(const RescueStep& step) {
    switch (step.phase) {
    case RangeStatus::kNonTried:
        return formatText("Copying, pass %u", step.pass);
    case RangeStatus::kNonTrimmed:
        return "Trimming";
    case RangeStatus::kNonScraped:
        return "Scraping";
    case RangeStatus::kBad:
        return formatText("Retrying, pass %u", step.pass);
    case RangeStatus::kFinished:
        break;
    }
    return "Finished";
}

std::string rescueAmountsInWords(const RescueFigures& figures) {
    std::string text = "Rescued " + sizeInWords(figures.rescued);
    addAmount(text, "missing", figures.missing);
    addAmount(text, "bad", figures.bad);
    if (figures.bad != 0) {
        text += formatText(" in %" PRIu64 " %s", figures.badAreas, figures.badAreas == 1 ? "area" : "areas");
    }
    addAmount(text, "untried", figures.untried);
    return text;
}

std::string rescueReadsInWords(const RescueFigures& figures) {
    return rateInWords(figures.bytesPerSecond) +
           formatText(", %" PRIu64 " of %" PRIu64 " reads failed, slowest read ", figures.failedReads, figures.reads) +
           secondsInWords(figures.slowestRead) + ", last good read " + durationInWords(figures.sinceGoodRead / 1000) +
           " ago";
}

} // namespace torvane
