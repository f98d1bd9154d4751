#include "copy/dialogs/copy_to_drive_dialog.h"

#include "admin/destruction_warning_dialog.h"
#include "copy/dialogs/copy_choices.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr RECT kDestinationPlace{420, 26, 830, 152};

} // namespace

bool CopyToDriveDialog::listDestinations(const DriveRecord* source) {
    destinations_.create(window(), IDC_COPY_DESTINATION_LIST, IDC_COPY_DESTINATION_LABEL, kDestinationPlace, true);
    for (DriveRecord* const drive : destinationCandidates(state(), source)) {
        destinations_.addRow(*drive);
    }
    SetFocus(destinations_.window());
    return false;
}

bool CopyToDriveDialog::chooseDestination(const char* cancelled) {
    DriveRecord* const chosen = requireDestination(destinations_.tickedDrives());
    if (chosen == nullptr) {
        return false;
    }
    state().copy.destination = chosen;
    const Destruction destruction{
        .drive = *chosen, .caption = look().title, .sourceImageLetter = state().copy.sourceImageLetter};
    if (!confirmDestruction(state(), destruction, window())) {
        state().copy.destination = nullptr;
        prompts::stop("***** Function Cancelled *****", cancelled);
        return false;
    }
    return true;
}

} // namespace torvane
