#pragma once

#include "records/drive_record.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// One row of the event log, ready for the list's four columns.
struct LogRow {
    std::string category;
    std::string date; ///< "%02d/%02d/%04d": month, day, year, local
    std::string time; ///< "%02d:%02d:%02d", local
    std::string message;
};

/// What jobs and commands may ask of the main window. Every function may be called from any thread and has taken effect
/// when it returns, as far as anybody can find out; the window's own thread must therefore never wait for a thread that
/// calls it.
class MainView {
  public:
    virtual ~MainView() = default;

    /// Appends the row and scrolls it into view. Whoever looks at the list afterwards finds it there.
    virtual void appendLogRow(const LogRow& row) = 0;

    /// Shows the scan's progress bar with range 0 to `maximum` at position 0, and the scan's status text.
    virtual void showScanProgress(int maximum) = 0;
    virtual void setScanProgress(int position) = 0;
    virtual void setScanStatus(std::string_view text) = 0;
    /// Hides the progress bar and the status text.
    virtual void hideScanProgress() = 0;

    /// Moves the wide progress bar of the read tests, 0 to 100.
    virtual void setWideProgress(int position) = 0;

    /// Appends the drive's row to the drive list and sets the record's list position.
    virtual void addDriveRow(DriveRecord& record) = 0;
    virtual void deleteDriveRows() = 0;
    virtual void redrawDriveList() = 0;
    /// The drive list is complete. `notShown`: drives that were left out of it, each with its row in the log.
    virtual void showDrivesFound(int shown, int notShown) = 0;
    /// Replaces the text of the drive's "Status" cell. Ignored when the drive has no row.
    virtual void setDriveStatus(const DriveRecord& record, std::string_view text) = 0;
    [[nodiscard]] virtual int driveRowCount() = 0;
    /// The drives whose row is ticked, in list order.
    [[nodiscard]] virtual std::vector<DriveRecord*> tickedDrives() = 0;

    /// Empties the health panel's texts and repaints the window.
    virtual void clearHealthPanel() = 0;

    /// Fires the main window's timer `id` every `milliseconds` until it is stopped; starting it again restarts it.
    virtual void startTimer(int id, int milliseconds) = 0;
    virtual void stopTimer(int id) = 0;
};

} // namespace torvane
