#include "reports/report_writers.h"

#include "base/local_moment.h"
#include "records/drive_record.h"
#include "reports/pdf_page.h"
#include "reports/report_page.h"
#include "state/app_state.h"

namespace torvane {

namespace {

ReportDate today() {
    const LocalMoment now = localNow();
    return {now.year, now.month, now.day};
}

int writeReport(const AppState& state, ReportPage (*compose)(const ReportFacts&)) {
    const DriveRecord& drive = *state.activeDrive;
    return writePdfPage(compose({drive, state.companyInfo, today()}), state.chosen.reportFileName.c_str());
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
