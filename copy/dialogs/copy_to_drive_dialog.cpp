#include "copy/dialogs/copy_to_drive_dialog.h"

#include "admin/destruction_warning_dialog.h"
#include "copy/dialogs/copy_choices.h"
#include "discovery/drive_summary.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "state/still_at_work.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

std::vector<DriveRecord*> drivesOf(const ScanState& scan) {
    std::vector<DriveRecord*> drives;
    drives.reserve(scan.drives.size());
    for (int i = 0; i < scan.driveCount; ++i) {
        drives.push_back(scan.drives[static_cast<std::size_t>(i)].get());
    }
    return drives;
}

} // namespace

bool CopyToDriveDialog::isWayOut(int id) const {
    return id == IDCANCEL || id == IDC_EXIT_CLONE || id == IDC_EXIT_IMAGE_TO_DRIVE;
}

bool CopyToDriveDialog::isBusy(JobKind kind) const {
    const Jobs::Obstacle obstacle = state().jobs.whyNot(kind);
    if (obstacle && !obstacle.flag) {
        sayWhoIsAtWork(obstacle);
    }
    return static_cast<bool>(obstacle);
}

bool CopyToDriveDialog::listDestinations(const DriveRowsLook& look, const DriveRecord* source) {
    destinations_.create(window(), look, state().scan.volumes);
    for (DriveRecord* const drive : destinationCandidates(drivesOf(state().scan), state().scan.volumes, source)) {
        destinations_.addRow(*drive);
    }
    source_ = source;
    warnOfSecurity(source, nullptr);
    SetFocus(destinations_.window());
    return false;
}

std::optional<LRESULT> CopyToDriveDialog::onNotify(NMHDR& header) {
    if (header.hwndFrom == destinations_.window() && header.code == NM_CUSTOMDRAW) {
        return destinations_.draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
    }
    if (header.hwndFrom != destinations_.window() || header.code != LVN_ITEMCHANGED) {
        return std::nullopt;
    }
    const DriveRecord* const drive = destinations_.drivePointedAt();
    setControlText(IDC_COPY_DESTINATION_DRIVE,
                   drive == nullptr ? "" : driveSummary(*drive, state().scan.volumes).c_str());
    warnOfSecurity(source_, drive);
    return 0;
}

bool CopyToDriveDialog::isVerificationWanted() const {
    return IsDlgButtonChecked(window(), IDC_VERIFY_AFTERWARDS) == BST_CHECKED;
}

DriveRecord* CopyToDriveDialog::chooseDestination(const char* cancelled, const std::string& sourceImage) {
    DriveRecord* const chosen = requireDestination(destinations_.tickedDrives());
    if (chosen == nullptr) {
        return nullptr;
    }
    const Destruction destruction{.drive = *chosen, .caption = look().title, .sourceImage = sourceImage};
    switch (confirmDestruction(state(), destruction, window())) {
    case Confirmation::kYes:
        return chosen;
    case Confirmation::kNo:
        prompts::stop("***** Function Cancelled *****", cancelled);
        return nullptr;
    case Confirmation::kRefused:
        break;
    }
    return nullptr;
}

} // namespace torvane
