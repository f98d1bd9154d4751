#include "details/drive_pages.h"

#include "details/health_page.h"
#include "details/identity_page.h"
#include "details/log_pages.h"
#include "details/tool_report.h"
#include "records/drive_record.h"

namespace torvane {

std::vector<DetailPage> drivePages(const DetailSubject& subject) {
    const ToolReport report = readToolReport(subject.drive.smartText);
    const DriveRecord& drive = subject.drive;
    return {identityPage(subject, report),
            healthPage(drive, report),
            attributePage(drive, report),
            selfTestPage(report),
            errorLogPage(report),
            statisticPage(drive, report),
            reportPage(drive)};
}

} // namespace torvane
