#include "copy/dialogs/copy_to_drive_dialog.h"

#include "admin/destruction_warning_dialog.h"
#include "copy/dialogs/copy_choices.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr RECT kDestinationPlace{420, 26, 830, 152};

std::vector<DriveRecord*> drivesOf(const ScanState& scan) {
    std::vector<DriveRecord*> drives;
    drives.reserve(scan.drives.size());
    for (int i = 0; i < scan.driveCount; ++i) {
        drives.push_back(scan.drives[static_cast<std::size_t>(i)].get());
    }
    return drives;
}

} // namespace

bool CopyToDriveDialog::isBusy(JobKind kind) const {
    return static_cast<bool>(state().jobs.whyNot(kind));
}

bool CopyToDriveDialog::listDestinations(const DriveRecord* source) {
    destinations_.create(window(), IDC_COPY_DESTINATION_LIST, IDC_COPY_DESTINATION_LABEL, kDestinationPlace, true);
    for (DriveRecord* const drive : destinationCandidates(drivesOf(state().scan), state().scan.volumes, source)) {
        destinations_.addRow(*drive);
    }
    SetFocus(destinations_.window());
    return false;
}

DriveRecord* CopyToDriveDialog::chooseDestination(const char* cancelled, char sourceImageLetter) {
    DriveRecord* const chosen = requireDestination(destinations_.tickedDrives());
    if (chosen == nullptr) {
        return nullptr;
    }
    const Destruction destruction{.drive = *chosen, .caption = look().title, .sourceImageLetter = sourceImageLetter};
    if (!confirmDestruction(state(), destruction, window())) {
        prompts::stop("***** Function Cancelled *****", cancelled);
        return nullptr;
    }
    return chosen;
}

} // namespace torvane
