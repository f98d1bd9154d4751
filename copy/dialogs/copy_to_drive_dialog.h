#pragma once

#include "copy/dialogs/copy_dialog.h"
#include "copy/dialogs/drive_rows_view.h"
#include "jobs/job_kind.h"

#include <string>

namespace torvane {

/// A dialog of a job that writes to a drive: the list of destinations, and what is asked before one is overwritten.
class CopyToDriveDialog : public CopyDialog {
  protected:
    using CopyDialog::CopyDialog;

    [[nodiscard]] bool isWayOut(int id) const override;

    /// True while a job runs that this one waits for, or while the last one has not ended yet.
    [[nodiscard]] bool isBusy(JobKind kind) const;

    /// Lists every drive that may be written to, without `source` (nullptr when the source is no drive), and gives the
    /// list the focus. Returns false: the dialog manager must not move it.
    bool listDestinations(const DriveRowsLook& look, const DriveRecord* source);

    /// Keeps IDC_COPY_DESTINATION_DRIVE, in a dialog that has it, at the drive that is ticked or selected.
    std::optional<LRESULT> onNotify(NMHDR& header) override;

    [[nodiscard]] bool hasTickedDestination() const { return !destinations_.tickedDrives().empty(); }

    /// The one ticked destination, after the technician has agreed to its destruction. Null with the reason told when
    /// there is no such drive, or when the answer was no (the box then says `cancelled`). `sourceImage`: see
    /// `Destruction`.
    [[nodiscard]] DriveRecord* chooseDestination(const char* cancelled, const std::string& sourceImage = {});

    /// "Verify afterwards" is ticked.
    [[nodiscard]] bool isVerificationWanted() const;

  private:
    DriveRowsView destinations_;
    const DriveRecord* source_ = nullptr; ///< none: an image is
};

} // namespace torvane
