#pragma once

#include "records/company_info.h"
#include "records/drive_record.h"
#include "reports/report_page.h"

namespace torvane::testing {

/// A drive with a value for everything that a report tells; each value of its own.
inline DriveRecord reportedDrive() {
    DriveRecord drive;
    drive.model.assign("WDC WD10EZEX-08WN4A0");
    drive.serialNumber.assign("WD-WCC6Y7ABCDEF");
    drive.disk[Counter::kPowerOnHours] = 26'280;
    drive.disk[Counter::kReallocatedSectors] = 7;
    drive.disk[Counter::kReallocationEvents] = 3;
    drive.disk[Counter::kPendingSectors] = 12;
    drive.disk[Counter::kOfflineUncorrectable] = 6;
    drive.disk[Counter::kReportedUncorrectable] = 0;
    drive.nvme.criticalWarning = 0;
    drive.nvme.availableSpare = 97;
    drive.nvme.availableSpareThreshold = 10;
    drive.nvme.dataUnitsWritten = 2'000'000;
    drive.nvme.gigabytesWritten = 953;
    drive.criticalTestResult = ReadTestResult::kPassed;
    drive.shortTestResult = ReadTestResult::kFailed;
    drive.nistTestResult = ReadTestResult::kNotPerformed;
    return drive;
}

inline CompanyInfo reportedCompany() {
    CompanyInfo company;
    company.assign("Northgate Drive Rescue", "12 Harbour Road, Bristol", "+44 117 496 0123");
    return company;
}

inline void addBitLockerEntry(DriveRecord& drive, char letter, std::string_view password) {
    BitLockerVolumeEntry& entry = drive.bitLockerEntries.at(static_cast<std::size_t>(drive.bitLockerEntryCount++));
    entry.hasKey = password.empty() ? 0 : 1;
    entry.driveLetter = letter;
    entry.recoveryPassword.assign(password);
}

} // namespace torvane::testing
