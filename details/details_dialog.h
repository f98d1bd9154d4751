#pragma once

#include "records/volume_record.h"

#include <windows.h>

#include <functional>
#include <string>

namespace torvane {

struct DriveRecord;

/// What becomes of the texts that a user carries away.
struct DetailActions {
    std::function<void(const std::string& text)> copy;
    std::function<void(const std::string& offeredName, const std::string& text)> save;
};

/// Asks the system what it tells of the drive and shows all that is known of it, modal over `owner`. What is shown is
/// taken when the window opens: no scan and no job changes it afterwards. `volumes`: of the last scan.
void showDriveDetails(const DriveRecord& drive, const VolumeTable& volumes, const DetailActions& actions, HWND owner);

} // namespace torvane
