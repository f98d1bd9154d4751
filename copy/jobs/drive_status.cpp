#include "copy/jobs/drive_status.h"

#include "base/format.h"
#include "copy/jobs/clauses.h"
#include "copy/jobs/size_units.h"

#include <cinttypes>

namespace torvane {

namespace {

void addFaults(std::string& text, const JobLosses& losses) {
    addCount(text, losses.unreadableBlocks, "unreadable block", "unreadable blocks");
    addCount(text, losses.failedWrites, "failed write", "failed writes");
}

void addNotCopied(std::string& text, const JobLosses& losses) {
    if (losses.bytesNotCopied != 0) {
        addClause(text, sizeInWords(losses.bytesNotCopied) + " of the source not copied");
    }
}

} // namespace

bool hasFaults(const JobLosses& losses) {
    return losses.unreadableBlocks != 0 || losses.failedWrites != 0;
}

bool hasLost(const JobLosses& losses) {
    return hasFaults(losses) || losses.bytesNotCopied != 0 || losses.notHashed;
}

std::string faultsInWords(const JobLosses& losses) {
    std::string text;
    addFaults(text, losses);
    return text;
}

std::string lossesInWords(const JobLosses& losses) {
    if (!hasLost(losses)) {
        return "Nothing was lost";
    }
    std::string text = faultsInWords(losses);
    addNotCopied(text, losses);
    if (losses.notHashed) {
        addClause(text, "not hashed");
    }
    if (losses.mountedMeanwhile) {
        addClause(text, "a volume was mounted meanwhile");
    }
    return text;
}

std::string driveOutcomeText(std::string_view ending, const JobLosses& losses) {
    std::string faults(ending);
    addFaults(faults, losses);
    if (ending.empty()) {
        addNotCopied(faults, losses);
    }
    return faults.empty() ? "COMPLETED" : "BAD " + faults;
}

} // namespace torvane
