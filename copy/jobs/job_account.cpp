#include "copy/jobs/job_account.h"

#include "base/format.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "records/sector_size.h"

#include <span>

namespace torvane {

namespace {

std::string driveInWords(const DriveRecord& drive) {
    const std::string printed = printedIdentityText(drive);
    return formatText("drive %d [%s] [%s]", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str())
        .append(printed.empty() ? "" : " (printed: " + printed + ")");
}

std::string inBrackets(const std::string& path) {
    return "[" + path + "]";
}

/// " 81 40 F9 ..."
std::string inBytes(std::span<const std::uint8_t> digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += formatText(" %02X", byte);
    }
    return text;
}

std::string endRow(const CopyJob& job, const JobAccount& account) {
    std::string row = jobInWords(job, account.file.empty() ? job.order.path : account.file);
    row.append(": ").append(account.ending);
    if (account.ending != kNotStarted) {
        row.append(". ").append(lossesInWords(account.losses));
    }
    if (account.comparison) {
        row.append(". Compared with its source: ")
            .append(comparisonInWords(*account.comparison, sectorSizeOf(*job.order.destination)));
    }
    if (account.digest) {
        row.append(". MD5").append(inBytes(*account.digest));
    }
    if (account.sha256) {
        row.append(". SHA-256").append(inBytes(*account.sha256));
    }
    // The image's own map lies beside it.
    if (account.file.empty() && account.evidence.map.made) {
        row.append(". Map [").append(account.evidence.map.path).append("]");
    }
    return row;
}

} // namespace

std::string_view titleOf(CopyKind kind) {
    switch (kind) {
    case CopyKind::kForwardClone:
        return "Clone";
    case CopyKind::kReverseClone:
        return "Reverse clone";
    case CopyKind::kImageToFile:
        return "Image";
    case CopyKind::kForensicImage:
        return "Forensic image";
    case CopyKind::kImageToDrive:
        return "Image to drive";
    case CopyKind::kRescue:
        return "Rescue";
    case CopyKind::kVerifyImage:
        break;
    }
    return "Verification";
}

std::string_view stopperInWords(Stopper stopper) {
    switch (stopper) {
    case Stopper::kNobody:
        break;
    case Stopper::kUser:
        return "the user";
    case Stopper::kBadBlocks:
        return "the limit of 11 unreadable blocks";
    case Stopper::kFailedRead:
        return "a failed read";
    case Stopper::kFailedWrite:
        return "a failed write";
    case Stopper::kFailedHash:
        return "a failed hash";
    case Stopper::kNoMemory:
        return "too little memory";
    }
    return "nobody";
}

void expectBytes(JobAccount& account, std::uint64_t bytes, std::uint64_t copied) {
    account.losses.bytesNotCopied = bytes;
    account.map = SourceMap(bytes);
    account.read = SourceMap(bytes);
    account.copiedBytes = copied;
}

std::string jobInWords(const CopyJob& job, const std::string& file) {
    const CopyOrder& order = job.order;
    const std::string from = order.source != nullptr ? driveInWords(*order.source) : inBrackets(order.path);
    const std::string to =
        order.destination != nullptr ? "onto " + driveInWords(*order.destination) : "into " + inBrackets(file);
    return std::string(titleOf(order.kind)).append(" of ").append(from).append(" ").append(to);
}

std::uint32_t runAccounted(const CopyJob& job, JobAccount& account, const std::function<std::uint32_t()>& run) {
    job.display.setLosses("", false);
    job.system.logJob(jobInWords(job, job.order.path) + " begins");
    account.begin = job.system.now();
    const std::uint32_t exitCode = run();
    if (!account.end) {
        endAccount(job, account);
    }
    job.system.logJob(endRow(job, account));
    // Whoever has just answered why it did not begin sits here.
    if (account.ending != kNotStarted) {
        job.display.callUser(account.ending == kCompleted && !hasLost(account.losses) &&
                             !isRefuted(account.comparison));
    }
    return exitCode;
}

void endAccount(const CopyJob& job, JobAccount& account) {
    account.end = account.end.value_or(job.system.now());
    saveEvidence(job, account);
}

void endBlocks(const CopyJob& job, JobAccount& account, std::string_view ending, Stopper stoppedBy) {
    account.ending = ending;
    account.stoppedBy = stoppedBy;
    endAccount(job, account);
}

void concludeRun(const CopyJob& job, JobAccount& account, std::string_view ending, Stopper stoppedBy) {
    endBlocks(job, account, ending, stoppedBy);
    job.display.setLosses(lossesInWords(account.losses), hasLost(account.losses));
}

} // namespace torvane
