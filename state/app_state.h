#pragma once

#include "base/fixed_text.h"
#include "jobs/jobs.h"
#include "records/case_information.h"
#include "records/company_info.h"
#include "records/message_table.h"
#include "state/event_log_file.h"
#include "state/main_view.h"
#include "state/mount_status.h"
#include "state/race_track_state.h"
#include "state/scan_tables.h"
#include "state/smart_scan_state.h"

#include <atomic>
#include <cstdint>

namespace torvane {

/// Names that the program goes on knowing when their command is done. The window's thread alone uses them.
struct ChosenNames {
    FixedText<1024> destinationFolder; ///< of an image or the portable drive; for an image to drive, the image's path
    FixedText<1024> reportFileName;
};

/// The one record of everything that lives longer than one command.
///
/// Functions take the record as an argument; `appState()` is for window procedures, thread procedures and the event
/// log. Numbers and pointers that a worker and the window's thread share are atomics; the rest belongs to the window's
/// thread.
struct AppState {
    Jobs jobs; ///< who is at work

    std::atomic<std::int32_t> activeDriveChosen{0}; ///< 1 once a drive was selected in the drive list
    std::atomic<std::int32_t> mountStatus{0};       ///< a MountStatus code; 0 before the first check
    std::atomic<DriveRecord*> activeDrive{nullptr};

    ScanState scan;
    SmartScanState smart;
    RaceTrackState raceTrack;

    CompanyInfo companyInfo; ///< printed on every report; the window's thread alone touches it
    MessageTable messages;   ///< the advice of "Message.db"; the window's thread alone reads and replaces it

    ChosenNames chosen;
    CaseInformation caseInformation; ///< of forensic images, until the program ends; the window's thread alone

    /// The main window. Set once at start-up, before any other thread runs, and never cleared: before the window exists
    /// and after its end the view itself ignores every call. Null in tests that need no window.
    MainView* view = nullptr;

    /// The file that keeps the event log. Set once at start-up, before any other thread runs, and never cleared. Null
    /// in tests, and in every other program that is linked with this state: none of them leaves a log behind.
    EventLogFile* eventLogFile = nullptr;
};

/// The application's one state record.
[[nodiscard]] AppState& appState();

} // namespace torvane
