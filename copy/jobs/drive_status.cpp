#include "copy/jobs/drive_status.h"

#include "base/format.h"

#include <cinttypes>

namespace torvane {

namespace {

void addClause(std::string& text, std::string_view clause) {
    text.append(text.empty() ? "" : ", ").append(clause);
}

void addCount(std::string& text, std::uint64_t count, std::string_view one, std::string_view many) {
    if (count != 0) {
        addClause(text, formatText("%" PRIu64 " ", count).append(count == 1 ? one : many));
    }
}

} // namespace

std::string driveOutcomeText(std::string_view ending, const JobLosses& losses) {
    std::string faults(ending);
    addCount(faults, losses.unreadableBlocks, "unreadable block", "unreadable blocks");
    addCount(faults, losses.failedWrites, "failed write", "failed writes");
    return faults.empty() ? "COMPLETED" : "BAD " + faults;
}

} // namespace torvane
