#include "copy/jobs/drive_status.h"

#include "base/format.h"

#include <array>
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

/// "512 MB", "1.5 GB", "100 bytes": in the largest unit that is not larger than the size itself.
std::string sizeInWords(std::uint64_t bytes) {
    struct Unit {
        std::string_view name;
        std::uint64_t bytes;
    };
    static constexpr std::array<Unit, 4> kUnits{
        {{" TB", 1ULL << 40}, {" GB", 1ULL << 30}, {" MB", 1ULL << 20}, {" KB", 1ULL << 10}}};
    for (const Unit& unit : kUnits) {
        if (bytes >= unit.bytes) {
            const bool whole = bytes % unit.bytes == 0;
            return (whole ? formatText("%" PRIu64, bytes / unit.bytes)
                          : formatText("%.1f", static_cast<double>(bytes) / static_cast<double>(unit.bytes)))
                .append(unit.name);
        }
    }
    return formatText("%" PRIu64, bytes).append(bytes == 1 ? " byte" : " bytes");
}

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

bool hasLost(const JobLosses& losses) {
    return losses.unreadableBlocks != 0 || losses.failedWrites != 0 || losses.bytesNotCopied != 0 || losses.notHashed;
}

std::string lossesInWords(const JobLosses& losses) {
    if (!hasLost(losses)) {
        return "Nothing was lost";
    }
    std::string text;
    addFaults(text, losses);
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
