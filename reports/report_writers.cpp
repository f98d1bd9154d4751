#include "reports/report_writers.h"

#include "base/format.h"
#include "base/local_moment.h"
#include "health/health_sentence.h"
#include "health/nvme_verdict.h"
#include "health/tool_missing.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "reports/pdf_page.h"
#include "reports/report_file.h"
#include "reports/report_page.h"
#include "state/app_state.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <atomic>
#include <memory>
#include <string>

namespace torvane {

namespace {

ReportDate today() {
    const LocalMoment now = localNow();
    return {now.year, now.month, now.day};
}

/// A report that is written on a thread of its own, which may outlive the user's patience.
struct Writing {
    ReportPage page;
    std::string fileName;
    PdfOutcome outcome;
};

/// True as long as a thread writes a report: two would write into the same file.
std::atomic<bool> isWriting{false};

int stillBeingWritten(const std::string& fileName) {
    prompts::warn(
        "***** REPORT NOT READY *****",
        formatText("Report <%s> is still being written: its disk does not answer.\n\nNothing was opened. Look "
                   "for the report when the disk answers again, and create it again if it is not there.",
                   fileName.c_str())
            .c_str());
    return 0;
}

int tell(const Writing& writing) {
    if (writing.outcome.notSavedWhy.empty()) {
        return writing.outcome.made ? 1 : 0;
    }
    reportNotSaved(writing.fileName.c_str(), writing.outcome.notSavedWhy);
    return 0;
}

std::string verdictInWords(const DriveRecord& drive, const MessageTable& messages) {
    const std::string failure = failureBesideCounters(drive);
    return failure.empty() ? healthSentence(drive, messages, isToolMissed(drive)) : failure;
}

int writeReport(const AppState& state, ReportPage (*compose)(const ReportFacts&)) {
    DriveRecord& drive = *state.activeDrive;
    const auto writing = std::make_shared<Writing>(
        Writing{.page = compose({.drive = drive,
                                 .company = state.companyInfo,
                                 .date = today(),
                                 .interfaceName = interfaceText(drive),
                                 .verdict = verdictInWords(drive, state.messages),
                                 .wear = drive.smartType == kSmartTypeNvme ? nvmeLifeText(drive.nvme) : ""}),
                .fileName = std::string(state.chosen.reportFileName.view()),
                .outcome = {}});
    if (isWriting.exchange(true)) {
        return stillBeingWritten(writing->fileName);
    }
    const auto write = [writing] {
        writing->outcome = writePdfPage(writing->page, writing->fileName.c_str());
        isWriting = false;
    };
    return waiting::run("the report's disk", write) ? tell(*writing) : stillBeingWritten(writing->fileName);
}

} // namespace

int WriteAtaReport(AppState& state) {
    return writeReport(state, composeAtaReport);
}

int WriteSsdReport(AppState& state) {
    return writeReport(state, composeSsdReport);
}

int WriteNvmeReport(AppState& state) {
    return writeReport(state, composeNvmeReport);
}

int WriteNoDataReport(AppState& state) {
    return writeReport(state, composeNoDataReport);
}

} // namespace torvane
