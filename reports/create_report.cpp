#include "reports/create_report.h"

#include "base/format.h"
#include "monitoring/command_runner.h"
#include "reports/report_file_name.h"
#include "reports/report_writers.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <string>

namespace torvane {

namespace {

using ReportWriter = int (*)(AppState& state);

/// The writer of the drive's kind of report; null for a drive that has none.
ReportWriter writerFor(std::int32_t smartType) {
    switch (smartType) {
    case kSmartTypeStandard:
        return WriteAtaReport;
    case kSmartTypeSsd:
        return WriteSsdReport;
    case kSmartTypeNvme:
        return WriteNvmeReport;
    case kSmartTypeUnknown:
        return WriteNoDataReport;
    default:
        return nullptr;
    }
}

} // namespace

bool CreateReport(AppState& state) {
    const DriveRecord* const drive =
        requireActiveDrive(state, "Load Drives, and click on drive to make ACTIVE for report.");
    if (drive == nullptr) {
        return false;
    }
    state.chosen.reportFileName.assign(reportFileName(drive->serialNumber.view()));
    const ReportWriter write = writerFor(drive->smartType);
    if (write == nullptr) {
        prompts::stop("****** UNSUPPORTED DEVICE ******", "Unsupported Device for Report");
        return false;
    }
    if (write(state) == 0) {
        return false;
    }
    const std::string command = openReportCommand(state.chosen.reportFileName.view());
    // The report is there, whether or not the user has waited for it to be opened.
    static_cast<void>(waiting::run("PowerShell", [command] { PARSE_BuildDataFile("WorkFile.txt", command.c_str()); }));
    prompts::inform("***** REPORT COMPLETED*****",
                    formatText("Report for <%s> successfully CREATED\n", state.chosen.reportFileName.c_str()).c_str());
    return true;
}

} // namespace torvane
