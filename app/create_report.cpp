#include "app/create_report.h"

#include "app/app_state.h"
#include "app/command_guards.h"
#include "app/not_built_yet.h"
#include "app/report_file_name.h"
#include "ui/prompts.h"

namespace torvane {

void createReport(AppState& state) {
    const DriveRecord* const drive =
        requireActiveDrive(state, "Load Drives, and click on drive to make ACTIVE for report.");
    if (drive == nullptr) {
        return;
    }
    state.reportFileName.assign(reportFileName(drive->serialNumber.view()));
    switch (drive->smartType) {
    case kSmartTypeStandard:
    case kSmartTypeSsd:
    case kSmartTypeNvme:
    case kSmartTypeUnknown:
        notBuiltYet("Create Report");
        return;
    default:
        prompts::stop("****** UNSUPPORTED DEVICE ******", "Unsupported Device for Report");
        return;
    }
}

} // namespace torvane
