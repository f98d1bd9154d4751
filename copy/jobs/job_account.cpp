#include "copy/jobs/job_account.h"

#include "base/format.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"

#include <cstdint>
#include <span>

namespace torvane {

namespace {

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
    case CopyKind::kVerifyImage:
        break;
    }
    return "Verification";
}

std::string driveInWords(const DriveRecord& drive) {
    const std::string printed = printedIdentityText(drive);
    return formatText("drive %d [%s] [%s]", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str())
        .append(printed.empty() ? "" : " (printed: " + printed + ")");
}

std::string inBrackets(const std::string& path) {
    return "[" + path + "]";
}

/// What is copied where; `file` is where an image goes.
std::string subjectOf(const CopyJob& job, const std::string& file) {
    const CopyOrder& order = job.order;
    const std::string from = order.source != nullptr ? driveInWords(*order.source) : inBrackets(order.path);
    const std::string to =
        order.destination != nullptr ? "onto " + driveInWords(*order.destination) : "into " + inBrackets(file);
    return std::string(titleOf(order.kind)).append(" of ").append(from).append(" ").append(to);
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
    std::string row = subjectOf(job, account.file.empty() ? job.order.path : account.file);
    row.append(": ").append(account.ending);
    if (account.ending != kNotStarted) {
        row.append(". ").append(lossesInWords(account.losses));
    }
    if (account.digest) {
        row.append(". MD5").append(inBytes(*account.digest));
    }
    if (account.sha256) {
        row.append(". SHA-256").append(inBytes(*account.sha256));
    }
    return row;
}

} // namespace

std::uint32_t runAccounted(const CopyJob& job, const std::function<std::uint32_t(JobAccount&)>& run) {
    job.display.setLosses("", false);
    job.system.logJob(subjectOf(job, job.order.path) + " begins");
    JobAccount account;
    const std::uint32_t exitCode = run(account);
    job.system.logJob(endRow(job, account));
    // Whoever has just answered why it did not begin sits here.
    if (account.ending != kNotStarted) {
        job.display.callUser(account.ending == kCompleted && !hasLost(account.losses));
    }
    return exitCode;
}

void showLosses(const CopyJob& job, const JobLosses& losses) {
    job.display.setLosses(lossesInWords(losses), hasLost(losses));
}

} // namespace torvane
